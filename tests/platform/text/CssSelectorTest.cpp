#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/text/CssSelector.h"
#include "platform/text/CssStyleSheet.h"
#include "platform/text/HtmlDocument.h"

namespace zv::css {
namespace {

constexpr char kPage[] = R"(<!DOCTYPE html><html><body>
<div id="a" class="box main" data-x="en-US" title="hello world">
  <p id="p1" class="lead">one</p>
  <span id="s1"></span>
  <p id="p2" lang="en">two <b id="b1">bold</b></p>
  <a id="l1" href="https://x">link</a>
</div>
<p id="p3">three</p>
</body></html>)";

const GumboNode* byId(const GumboNode* node, std::string_view id) {
  if (!HtmlDocument::isElement(node)) return nullptr;
  const char* value = HtmlDocument::attribute(node, "id");
  if (value && id == value) return node;
  const GumboVector& children = HtmlDocument::children(node);
  for (unsigned i = 0; i < children.length; ++i) {
    if (auto found = byId(static_cast<const GumboNode*>(children.data[i]), id)) return found;
  }
  return nullptr;
}

TEST(CssSelectorTest, CombinatorsAttributesAndPseudoClasses) {
  HtmlDocument page(kPage);
  struct Case {
    const char* selector;
    const char* id;
    bool matches;
  } cases[] = {
      {"div p", "p1", true},
      {"div p", "p3", false},
      {"body  >  div > p:first-child", "p1", true},
      {"div > b", "b1", false},
      {"p > b", "b1", true},
      {"div b", "b1", true},
      {"#p1 + span", "s1", true},
      {"#p1 + p", "p2", false},
      {"#p1 ~ p", "p2", true},
      {"#p2 ~ p", "p1", false},
      {"div~p", "p3", true},
      {"[data-x]", "a", true},
      {"[data-x=en-US]", "a", true},
      {"[DATA-X=\"en-US\"]", "a", true},
      {"[data-x=en-us]", "a", false},
      {"[data-x=en-us i]", "a", true},
      {"[data-x|=en]", "a", true},
      {"[data-x|=e]", "a", false},
      {"[title~=world]", "a", true},
      {"[title~=wor]", "a", false},
      {"[title^=hel]", "a", true},
      {"[title$=rld]", "a", true},
      {"[title*='o w']", "a", true},
      {"[title^='']", "a", false},
      {"[lang]", "p1", false},
      {".box.main", "a", true},
      {".box.other", "a", false},
      {"DIV#a.box", "a", true},
      {"*", "b1", true},
      {"div *", "b1", true},
      {":first-child", "p1", true},
      {"a:last-child", "l1", true},
      {"p:only-child", "p3", false},
      {"span:empty", "s1", true},
      {"p:empty", "p1", false},
      {"a:link", "l1", true},
      {"a:any-link", "l1", true},
      {"p:hover", "p1", false},
      {"p::before", "p1", false},
      {"p:nth-child(1)", "p1", false},
  };
  for (const auto& c : cases) {
    auto selector = Selector::parse(c.selector);
    ASSERT_TRUE(selector) << c.selector;
    const GumboNode* element = byId(page.root(), c.id);
    ASSERT_TRUE(element) << c.id;
    EXPECT_EQ(selector->matches(element, page.quirks()), c.matches)
        << c.selector << " on #" << c.id;
  }
  for (const char* bad : {"", "div >", "> p", "[x", "[x=]", "#", ".", "p,", "p q >", "[x=a b]"}) {
    EXPECT_FALSE(Selector::parse(bad)) << "[" << bad << "]";
  }
}

TEST(CssSelectorTest, ClassesAndIdsIgnoreCaseOnlyInQuirksMode) {
  std::string body = R"(<p id="x" class="Lead">t</p>)";
  HtmlDocument standards("<!DOCTYPE html>" + body);
  HtmlDocument quirks(body);
  ASSERT_FALSE(standards.quirks());
  ASSERT_TRUE(quirks.quirks());
  for (const char* text : {".lead", "#X"}) {
    auto selector = Selector::parse(text);
    EXPECT_FALSE(selector->matches(byId(standards.root(), "x"), false)) << text;
    EXPECT_TRUE(selector->matches(byId(quirks.root(), "x"), true)) << text;
  }
}

TEST(CssSelectorTest, RankOrdersIdsThenClassesThenTypes) {
  const char* ascending[] = {"*",  "p",   "div p", "body div p",
                             ".a", "p.a", ".a.b",  "[x].a:first-child",
                             "#a", "p#a", "#a .b"};
  for (size_t i = 1; i < std::size(ascending); ++i) {
    EXPECT_LT(Selector::parse(ascending[i - 1])->rank(), Selector::parse(ascending[i])->rank())
        << ascending[i - 1] << " < " << ascending[i];
  }
  EXPECT_EQ(Selector::parse(".a")->rank(), Selector::parse("[x]")->rank());
  EXPECT_EQ(Selector::parse(".a")->rank(), Selector::parse(":empty")->rank());
}

// The value of property that wins on element: the last important declaration, else the last one.
std::string winner(const StyleSheet& sheet, const GumboNode* element, std::string_view property) {
  std::vector<const Declaration*> normal, important;
  sheet.match(element, false, normal, important);
  for (const auto* list : {&important, &normal}) {
    for (auto it = list->rbegin(); it != list->rend(); ++it) {
      if ((*it)->property == property) return (*it)->value;
    }
  }
  return "";
}

TEST(CssStyleSheetTest, RankThenSourceOrderWithImportantAbove) {
  HtmlDocument page(kPage);
  const GumboNode* p1 = byId(page.root(), "p1");
  struct Case {
    const char* sheet;
    const char* color;  // the winning value on #p1, "" for none
  } cases[] = {
      {"p{color:red} p{color:blue}", "blue"},
      {"p{color: red; color: blue}", "blue"},
      {"#p1{color:red} p{color:blue}", "red"},
      {".lead{color:red} p{color:blue}", "red"},
      {"div p{color:red} p{color:blue}", "red"},
      {"p{color:red !important} #p1{color:blue}", "red"},
      {"p{color:red ! important} #p1{color:blue}", "red"},
      {"p{color:red !important} p{color:green !important}", "green"},
      {"#p1{color:red !important} p{color:green !important}", "red"},
      {"P{color:red}", "red"},
      {"p, div{color:red}", "red"},
      {"h1, p {color:red} p {}", "red"},
      {"p{color:red} p > {color:blue}", "red"},     // a rule with a bad selector is dropped
      {"p{color:red} p, >div{color:blue}", "red"},  // whole
      {"p{/* color:blue; */color:red}", "red"},
      {"p{color:red;}x{", "red"},
      {"p{color:blue} @media screen{p{color:red}}", "red"},
      {"p{color:blue} @media all and (min-width: 1px){p{color:red}}", "blue"},
      {"p{color:blue} @media print{p{color:red}}", "blue"},
      {"@font-face{font-family:x} p{color:red}", "red"},
      {"@import url(x.css); p{color:red}", "red"},
      {"p{content:'}'; color:red}", "red"},
      {"span{color:red}", ""},
  };
  for (const auto& c : cases) {
    StyleSheet sheet;
    sheet.add(c.sheet);
    EXPECT_EQ(winner(sheet, p1, "color"), c.color) << c.sheet;
  }
  StyleSheet twoSheets;
  twoSheets.add("#p1{color:red} p{color:green}");
  twoSheets.add("p{color:blue}");
  EXPECT_EQ(winner(twoSheets, p1, "color"), "red");  // rank before the order of the sheets
}

}  // namespace
}  // namespace zv::css

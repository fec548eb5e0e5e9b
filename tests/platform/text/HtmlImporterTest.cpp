#include <gtest/gtest.h>

#include "platform/text/HtmlImporter.h"
#include "platform/text/Utf16.h"

namespace zv {
namespace {

std::shared_ptr<StyledText> import(const std::string& html) {
  auto text = HtmlImporter::import(html);
  EXPECT_NE(text, nullptr) << html;
  return text;
}

// The struck-through substrings, run by run.
std::vector<std::string> struck(const StyledText& t) {
  std::vector<std::string> out;
  t.enumerateAttribute(Attribute::kStrikethrough, {0, t.length()}, 0,
                       [&](const std::optional<AttributeValue>& v, TextRange r, bool&) {
                         if (v)
                           out.push_back(utf16ToUtf8(t.characters().substr(r.location, r.length)));
                       });
  return out;
}

TEST(HtmlImporterTest, StruckRunsComeFromElementsAndCss) {
  using S = std::vector<std::string>;
  struct Case {
    const char* html;
    S struck;
  } cases[] = {
      {"<s>a</s> b <strike>c</strike> <del>d</del>", {"a", "c", "d"}},
      {"<span style=\"text-decoration: underline line-through\">a</span>b", {"a"}},
      {"<span style=\"text-decoration-line:line-through\">a</span>b", {"a"}},
      {"<style>.old{text-decoration:line-through}</style><i class=old>a</i>b", {"a"}},
      {"<style>s{text-decoration:none}</style><s>a</s>", {}},
      {"<s style=\"text-decoration:none\">a</s>", {}},
      // Decorations reach into descendants, which cannot take them back.
      {"<s>a<span style=\"text-decoration:none\">b</span></s>c", {"ab"}},
      {"<p style=\"text-decoration:line-through\">a<b>b</b></p>c", {"ab\n"}},
      // A collapsed space belongs to the element it was typed in.
      {"x<s> a </s>y", {" a "}},
      {"x <s>a</s> y", {"a"}},
      // The line break before and after a struck block goes with it.
      {"a<div style=\"text-decoration:line-through\">b</div>c", {"\nb\n"}},
      {"<u>a</u><ins>b</ins>", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(struck(*import(c.html)), c.struck) << c.html;
}

TEST(HtmlImporterTest, TheCascadeDecidesFontColourAndLink) {
  struct Case {
    const char* html;  // the character checked is the first "X"
    double size;
    long weight;
    bool italic;
    const char* family;
    Color color;
  } cases[] = {
      {"<b>X</b>", 16, 700, false, "Times", {0, 0, 0, 1}},
      {"<b><b>X</b></b>", 16, 900, false, "Times", {0, 0, 0, 1}},
      {"<h1>X</h1>", 32, 700, false, "Times", {0, 0, 0, 1}},
      {"<style>*{font-size:17px}</style><h1>X</h1>", 17, 700, false, "Times", {0, 0, 0, 1}},
      {"<p style=\"font-size:12pt\"><i>X</i></p>", 16, 400, true, "Times", {0, 0, 0, 1}},
      {"<div style=\"font-size:20px\"><span style=\"font-size:1.5em\">X</span></div>",
       30,
       400,
       false,
       "Times",
       {0, 0, 0, 1}},
      {"<font size=5 face=\"Arial, sans-serif\" color=00ff00>X</font>",
       24,
       400,
       false,
       "Arial",
       {0, 1, 0, 1}},
      {"<span style=\"font: italic bold 12px/30px 'Helvetica Neue', serif\">X</span>",
       12,
       700,
       true,
       "Helvetica Neue",
       {0, 0, 0, 1}},
      {"<span style=\"font-weight:300;color:rgb(0, 128, 0)\">X</span>",
       16,
       300,
       false,
       "Times",
       {0, 128 / 255.0, 0, 1}},
      {"<style>#a{color:red} .b{color:blue}</style><span id=a class=b>X</span>",
       16,
       400,
       false,
       "Times",
       {1, 0, 0, 1}},
      {"<style>.b{color:blue} span{color:red}</style><span class=b>X</span>",
       16,
       400,
       false,
       "Times",
       {0, 0, 1, 1}},
      {"<style>span{color:blue}</style><span style=\"color:red\">X</span>",
       16,
       400,
       false,
       "Times",
       {1, 0, 0, 1}},
      {"<style>span{color:blue!important}</style><span style=\"color:red\">X</span>",
       16,
       400,
       false,
       "Times",
       {0, 0, 1, 1}},
      {"<style>div > span{color:red} div span{color:blue}</style><div><b><span>X",
       16,
       700,
       false,
       "Times",
       {0, 0, 1, 1}},
      // Without a doctype the document is in quirks mode: class names ignore case.
      {"<style>.Big{font-size:20px}</style><span class=big>X</span>",
       20,
       400,
       false,
       "Times",
       {0, 0, 0, 1}},
      {"<!DOCTYPE html><style>.Big{font-size:20px}</style><span class=big>X</span>",
       16,
       400,
       false,
       "Times",
       {0, 0, 0, 1}},
      {"<style>@media print{b{font-size:9px}} @media screen{b{color:red}}</style><b>X",
       16,
       700,
       false,
       "Times",
       {1, 0, 0, 1}},
  };
  for (const auto& c : cases) {
    auto text = import(c.html);
    size_t at = text->characters().find(u'X');
    ASSERT_NE(at, std::u16string::npos) << c.html;
    const TextAttributes& a = text->attributesAt(at);
    EXPECT_EQ(a.fontSize, c.size) << c.html;
    EXPECT_EQ(a.fontWeight, c.weight) << c.html;
    EXPECT_EQ(a.italic, c.italic) << c.html;
    EXPECT_EQ(a.fontFamily, c.family) << c.html;
    EXPECT_EQ(*a.foregroundColor, c.color) << c.html;
  }
}

TEST(HtmlImporterTest, LinksAndParagraphsCarryTheirAttributes) {
  auto text = import(
      "<p align=center><a href=\"app://deal\">deal</a></p><div "
      "style=\"text-align:right\">r</div>");
  ASSERT_EQ(text->string(), "deal\nr");
  EXPECT_EQ(text->attributesAt(0).link, "app://deal");
  EXPECT_EQ(text->attributesAt(0).underline, kUnderlineStyleSingle);
  EXPECT_EQ(text->attributesAt(0).paragraphStyle->alignment, TextAlignment::kCenter);
  EXPECT_EQ(text->attributesAt(5).paragraphStyle->alignment, TextAlignment::kRight);
  EXPECT_FALSE(text->attributesAt(5).link.has_value());
}

TEST(HtmlImporterTest, UnreadableInputIsAFailedParse) {
  struct Case {
    std::string html;
    long code;
  } cases[] = {
      {"\xFF", HtmlImporter::kInvalidEncoding},
      {"ok \xED\xA0\x80 surrogate", HtmlImporter::kInvalidEncoding},
      {"cut \xE2\x82", HtmlImporter::kInvalidEncoding},
      {[] {
         std::string s;
         for (int i = 0; i <= HtmlImporter::kMaximumDepth; ++i) s += "<div>";
         return s;
       }(),
       HtmlImporter::kTooDeep},
  };
  for (const auto& c : cases) {
    Error error;
    EXPECT_EQ(HtmlImporter::import(c.html, &error), nullptr);
    EXPECT_EQ(error.domain, HtmlImporter::kErrorDomain);
    EXPECT_EQ(error.code, c.code);
  }
  // Deep but allowed nesting, void elements that do not nest, and odd bytes that are UTF-8.
  std::string deep;
  for (int i = 0; i < 3000; ++i) deep += "<span><br><img>";
  EXPECT_EQ(import(deep + "x")->string().back(), 'x');
  EXPECT_EQ(import(std::string("a\0b", 3))->length(), 2u);
}

}  // namespace
}  // namespace zv

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/text/CssProperties.h"

namespace zv::css {
namespace {

// The style an element gets from one declaration, inside a parent that differs from the initial
// style in every property read here.
ComputedStyle applied(const char* property, const char* value, const ComputedStyle& parent,
                      bool quirks = false) {
  ComputedStyle s;
  s.fontFamily = "Start";  // as the element's own defaults may have set it
  applyDeclaration(Declaration{property, value, false}, s, parent, PropertyContext{20.0, quirks});
  return s;
}

ComputedStyle styledParent() {
  ComputedStyle p;
  p.fontFamily = "Parent";
  p.fontSize = 10;
  p.fontWeight = 700;
  p.italic = true;
  p.color = Color{0, 0, 1, 1};
  p.visible = false;
  p.whiteSpace = WhiteSpace::kPre;
  p.alignment = TextAlignment::kCenter;
  p.textTransform = TextTransform::kUppercase;
  p.display = Display::kBlock;
  p.blockifiesChildren = true;
  p.ownUnderline = true;
  p.outOfFlow = true;
  return p;
}

TEST(CssPropertiesTest, FontSizesWithUnitsAndKeywords) {
  const ComputedStyle parent = styledParent();  // 10px; the root font is 20px
  struct Case {
    const char* value;
    bool quirks;
    double px;  // 16 (the initial size) when the value is ignored
  } cases[] = {
      {"12px", false, 12},
      {"12PX", false, 12},
      {"12pt", false, 16},
      {"1pc", false, 16},
      {"1in", false, 96},
      {"2.54cm", false, 96},
      {"25.4mm", false, 96},
      {"4q", false, 3.779527559},
      {"2em", false, 20},
      {"2rem", false, 40},
      {"150%", false, 15},
      {"1ex", false, 5},
      {".5em", false, 5},
      {"+3px", false, 3},
      {"1e1px", false, 10},
      {"x-large", false, 24},
      {"XX-SMALL", false, 9},
      {"larger", false, 12},
      {"smaller", false, 10 / 1.2},
      {"0", false, 0},
      {"12", true, 12},
      {"inherit", false, 10},
      {"initial", false, 16},
      {"unset", false, 10},
      {"12", false, 16},
      {"-1px", false, 16},
      {"12 px", false, 16},
      {"12px12", false, 16},
      {"big", false, 16},
      {"", false, 16},
  };
  for (const auto& c : cases) {
    EXPECT_NEAR(applied("font-size", c.value, parent, c.quirks).fontSize, c.px, 1e-6) << c.value;
  }
}

TEST(CssPropertiesTest, FontShorthandSetsAllOrNothing) {
  const ComputedStyle parent = styledParent();
  struct Case {
    const char* value;
    const char* family;
    double size;
    int weight;
    bool italic;
  } cases[] = {
      {"italic bold 12px/30px Georgia, serif", "Georgia", 12, 700, true},
      {"bold 1.5em 'Helvetica Neue', Arial", "Helvetica Neue", 15, 700, false},
      {"16px / 1.2 Arial", "Arial", 16, 400, false},
      {"normal small-caps 300 12pt \"A B\"", "A B", 16, 300, false},
      {"oblique 10px x", "x", 10, 400, true},
      {"caption", "-apple-system", 16, 400, false},
      {"inherit", "Parent", 10, 700, true},
      {"initial", "Times", 16, 400, false},
      {"12px", "Start", 16, 400, false},        // no family: ignored
      {"bold Arial", "Start", 16, 400, false},  // no size: ignored
      {"12px bold Arial", "bold Arial", 12, 400, false},
  };
  for (const auto& c : cases) {
    ComputedStyle s = applied("font", c.value, parent);
    EXPECT_EQ(s.fontFamily, c.family) << c.value;
    EXPECT_NEAR(s.fontSize, c.size, 1e-6) << c.value;
    EXPECT_EQ(s.fontWeight, c.weight) << c.value;
    EXPECT_EQ(s.italic, c.italic) << c.value;
  }
}

TEST(CssPropertiesTest, KeywordsAndValuesOfTheOtherProperties) {
  const ComputedStyle parent = styledParent();
  struct Case {
    const char* property;
    const char* value;
    bool (*check)(const ComputedStyle&);
  } cases[] = {
      {"font-weight", "bolder", [](const ComputedStyle& s) { return s.fontWeight == 900; }},
      {"font-weight", "lighter", [](const ComputedStyle& s) { return s.fontWeight == 400; }},
      {"font-weight", "550", [](const ComputedStyle& s) { return s.fontWeight == 550; }},
      {"font-weight", "1001", [](const ComputedStyle& s) { return s.fontWeight == 400; }},
      {"font-weight", "500px", [](const ComputedStyle& s) { return s.fontWeight == 400; }},
      {"font-style", "oblique 10deg", [](const ComputedStyle& s) { return s.italic; }},
      {"font-family", "  'Open  Sans' , serif",
       [](const ComputedStyle& s) { return s.fontFamily == "Open Sans"; }},
      {"color", "currentColor",
       [](const ComputedStyle& s) {
         return s.color == Color{0, 0, 1, 1};
       }},
      {"color", "#ff000080",
       [](const ComputedStyle& s) {
         return s.color == Color{1, 0, 0, 128 / 255.0};
       }},
      {"color", "notacolor",
       [](const ComputedStyle& s) {
         return s.color == Color{0, 0, 0, 1};
       }},
      {"text-decoration", "underline wavy red",
       [](const ComputedStyle& s) { return s.ownUnderline && !s.ownLineThrough; }},
      {"text-decoration", "line-through underline",
       [](const ComputedStyle& s) { return s.ownUnderline && s.ownLineThrough; }},
      {"text-decoration-line", "underline wavy",
       [](const ComputedStyle& s) { return !s.ownUnderline; }},
      {"display", "inline-block",
       [](const ComputedStyle& s) { return s.display == Display::kInline; }},
      {"display", "inline-flex",
       [](const ComputedStyle& s) {
         return s.display == Display::kInline && s.blockifiesChildren;
       }},
      {"display", "list-item", [](const ComputedStyle& s) { return s.display == Display::kBlock; }},
      {"display", "table-row-group",
       [](const ComputedStyle& s) { return s.display == Display::kTableInternal; }},
      {"display", "table-caption",
       [](const ComputedStyle& s) { return s.display == Display::kBlock; }},
      {"display", "bogus", [](const ComputedStyle& s) { return s.display == Display::kInline; }},
      {"float", "left", [](const ComputedStyle& s) { return s.outOfFlow; }},
      {"position", "relative", [](const ComputedStyle& s) { return !s.outOfFlow; }},
      {"white-space", "pre-line",
       [](const ComputedStyle& s) { return s.whiteSpace == WhiteSpace::kPreLine; }},
      {"text-align", "-webkit-center",
       [](const ComputedStyle& s) { return s.alignment == TextAlignment::kCenter; }},
      {"text-transform", "Capitalize",
       [](const ComputedStyle& s) { return s.textTransform == TextTransform::kCapitalize; }},
      {"visibility", "collapse", [](const ComputedStyle& s) { return !s.visible; }},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(c.check(applied(c.property, c.value, parent))) << c.property << ": " << c.value;
  }
  // Each property takes its parent's value for inherit, its initial value for initial, and for
  // unset the one or the other as the property inherits or not.
  struct Global {
    const char* property;
    bool inherited;
    bool (*same)(const ComputedStyle&, const ComputedStyle&);
  } globals[] = {
      {"color", true, [](auto& a, auto& b) { return a.color == b.color; }},
      {"font-family", true, [](auto& a, auto& b) { return a.fontFamily == b.fontFamily; }},
      {"font-weight", true, [](auto& a, auto& b) { return a.fontWeight == b.fontWeight; }},
      {"font-style", true, [](auto& a, auto& b) { return a.italic == b.italic; }},
      {"visibility", true, [](auto& a, auto& b) { return a.visible == b.visible; }},
      {"white-space", true, [](auto& a, auto& b) { return a.whiteSpace == b.whiteSpace; }},
      {"text-align", true, [](auto& a, auto& b) { return a.alignment == b.alignment; }},
      {"text-transform", true, [](auto& a, auto& b) { return a.textTransform == b.textTransform; }},
      {"display", false,
       [](auto& a, auto& b) {
         return a.display == b.display && a.blockifiesChildren == b.blockifiesChildren;
       }},
      {"text-decoration-line", false,
       [](auto& a, auto& b) {
         return a.ownUnderline == b.ownUnderline && a.ownLineThrough == b.ownLineThrough;
       }},
      {"float", false, [](auto& a, auto& b) { return a.outOfFlow == b.outOfFlow; }},
  };
  ComputedStyle fromInitial = ComputedStyle();
  for (const auto& g : globals) {
    EXPECT_TRUE(g.same(applied(g.property, "inherit", parent), parent)) << g.property;
    EXPECT_TRUE(g.same(applied(g.property, "INITIAL", parent), fromInitial)) << g.property;
    EXPECT_TRUE(g.same(applied(g.property, "unset", parent), g.inherited ? parent : fromInitial))
        << g.property;
    EXPECT_FALSE(g.same(parent, fromInitial)) << g.property;  // the parent shows the difference
  }
}

}  // namespace
}  // namespace zv::css

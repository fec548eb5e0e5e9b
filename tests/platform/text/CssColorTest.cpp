#include <gtest/gtest.h>

#include <cmath>

#include "platform/text/CssColor.h"

namespace zv::css {
namespace {

TEST(CssColorTest, CssAndLegacySyntax) {
  struct Case {
    const char* text;
    std::optional<Color> css;
    std::optional<Color> legacy;
  } cases[] = {
      {"red", Color{1, 0, 0, 1}, Color{1, 0, 0, 1}},
      {" NaVy ", Color{0, 0, 128 / 255.0, 1}, Color{0, 0, 128 / 255.0, 1}},
      {"#0f0", Color{0, 1, 0, 1}, Color{0, 1, 0, 1}},
      {"#00ff0080", Color{0, 1, 0, 128 / 255.0}, Color{0, 240 / 255.0, 128 / 255.0, 1}},
      {"rgba(255, 0, 0, 0.5)", Color{1, 0, 0, 0.5}, Color{0, 80 / 255.0, 0, 1}},
      {"rgb(100% 0% 0% / 25%)", Color{1, 0, 0, 0.25}, Color{176 / 255.0, 0, 2 / 255.0, 1}},
      {"hsl(120, 100%, 50%)", Color{0, 1, 0, 1}, Color{0, 1 / 255.0, 80 / 255.0, 1}},
      {"transparent", Color{0, 0, 0, 0}, std::nullopt},
      {"ff0000", std::nullopt, Color{1, 0, 0, 1}},
      {"#f00ba", std::nullopt, Color{240 / 255.0, 11 / 255.0, 160 / 255.0, 1}},
      {"chucknorris", std::nullopt, Color{192 / 255.0, 0, 0, 1}},
      {"#12345", std::nullopt, Color{18 / 255.0, 52 / 255.0, 80 / 255.0, 1}},
      {"rgb(1,2)", std::nullopt, Color{0, 1 / 255.0, 32 / 255.0, 1}},
      {"bluish", std::nullopt, Color{176 / 255.0, 0, 0, 1}},
      {"", std::nullopt, std::nullopt},
  };
  auto same = [](std::optional<Color> a, std::optional<Color> b) {
    if (!a || !b) return a.has_value() == b.has_value();
    return std::abs(a->red - b->red) + std::abs(a->green - b->green) + std::abs(a->blue - b->blue) +
               std::abs(a->alpha - b->alpha) <
           1e-9;
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(same(parseColor(c.text), c.css)) << c.text;
    EXPECT_TRUE(same(parseLegacyColor(c.text), c.legacy)) << c.text;
  }
}

}  // namespace
}  // namespace zv::css

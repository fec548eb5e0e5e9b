#include <gtest/gtest.h>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Exception.h"

namespace zv {
namespace {

TEST(ZVRichNotifUtilsColorTest, ScansHexAfterTheFirstCharacter) {
  struct Case {
    const char* text;
    std::uint32_t rgb;
  } cases[] = {
      {"#FFFFFF", 0xFFFFFF},
      {"#000000", 0x000000},
      {"#FF8800", 0xFF8800},
      {"#80FF8800", 0xFF8800},  // the top byte is dropped, never alpha
      {"FFFFFF", 0x0FFFFF},     // the first digit is taken for the mark
      {"#", 0},
      {"#XYZ", 0},
      {"#12zz34", 0x12},
      {"#0x1A2B3C", 0x1A2B3C},
      {"#0x", 0},
      {"# \tFF8800", 0xFF8800},
      {"#1FF8800AA", 0xFFFFFF},  // more than 32 bits saturate: opaque white
      {"é00FF00", 0x00FF00},     // a multi-byte first character is skipped whole
  };
  for (const auto& c : cases) {
    ColorRef color = ZVRichNotifUtils::getColorFromHexValue(Value(c.text));
    ASSERT_TRUE(color) << c.text;
    EXPECT_EQ(*color, (Color{((c.rgb >> 16) & 0xFF) / 255.0, ((c.rgb >> 8) & 0xFF) / 255.0,
                             (c.rgb & 0xFF) / 255.0, 1.0}))
        << c.text;
  }
}

TEST(ZVRichNotifUtilsColorTest, NothingGivesTheClearObjectAndOtherKindsRaise) {
  EXPECT_EQ(ZVRichNotifUtils::getColorFromHexValue(Value()), Color::clear());
  EXPECT_EQ(ZVRichNotifUtils::getColorFromHexValue(Value("")), Color::clear());
  EXPECT_NE(ZVRichNotifUtils::getColorFromHexValue(Value("#000000")), Color::clear());
  EXPECT_THROW(ZVRichNotifUtils::getColorFromHexValue(Value::parse("12")), Exception);
  EXPECT_THROW(ZVRichNotifUtils::getColorFromHexValue(Value::parse("[\"#FFF\"]")), Exception);
}

}  // namespace
}  // namespace zv

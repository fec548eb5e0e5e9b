#include <gtest/gtest.h>

#include "model/ZVRichNotifUtils.h"
#include "zentrova/Exception.h"

namespace zv {
namespace {

using U = ZVRichNotifUtils;

TEST(ZVRichNotifUtilsTest, ColorsScanHexAfterTheFirstCharacter) {
  struct Case {
    const char* text;
    std::uint32_t rgb;
  } cases[] = {
      {"#FFFFFF", 0xFFFFFF},
      {"#000000", 0},
      {"#FF8800", 0xFF8800},
      {"#80FF8800", 0xFF8800},  // the top byte is dropped, never alpha
      {"FFFFFF", 0x0FFFFF},     // the first digit is taken for the mark
      {"#", 0},
      {"#XYZ", 0},
      {"#12zz34", 0x12},
      {"#0x1A2B3C", 0x1A2B3C},
      {"# \tFF8800", 0xFF8800},
      {"#1FF8800AA", 0xFFFFFF},  // more than 32 bits saturate: opaque white
      {"\xC3\xA9"
       "00FF00",
       0x00FF00},  // a multi-byte first character is skipped whole
  };
  for (const auto& c : cases) {
    Color expected{((c.rgb >> 16) & 0xFF) / 255.0, ((c.rgb >> 8) & 0xFF) / 255.0,
                   (c.rgb & 0xFF) / 255.0, 1.0};
    EXPECT_EQ(*U::getColorFromHexValue(Value(c.text)), expected) << c.text;
  }
  EXPECT_EQ(U::getColorFromHexValue(Value()), Color::clear());
  EXPECT_EQ(U::getColorFromHexValue(Value("")), Color::clear());
  EXPECT_NE(U::getColorFromHexValue(Value("#000000")), Color::clear());
  EXPECT_THROW(U::getColorFromHexValue(Value::parse("12")), Exception);
}

TEST(ZVRichNotifUtilsTest, UrlFromStringEncodesOnlyStringsWithoutEscapes) {
  struct Case {
    std::string in;
    bool encoded;
    std::optional<std::string> url;
  } cases[] = {
      {"", false, std::nullopt},
      {"http://h/a b.png", false, "http://h/a%20b.png"},
      {"http://h/a%20b.png", true, "http://h/a%20b.png"},
      {"http://h/a.png#top", false, "http://h/a.png%23top"},  // no escapes: "#" is encoded
      {"http://h/a%20b.png#top", true, "http://h/a%20b.png#top"},
      {"http://h/caf\xC3\xA9.png", false, "http://h/caf%C3%A9.png"},
      {"http://h/q?x=1&y=[2]", false, "http://h/q?x=1&y=%5B2%5D"},
      {"http://h/100%", true, std::nullopt},           // a broken escape: taken as encoded
      {"http://h/%20 x", true, std::nullopt},          // escaped yet a raw space: no URL
      {"http://h/%FF.png", true, "http://h/%FF.png"},  // decodes to bad UTF-8: encoded
  };
  for (const auto& c : cases) {
    EXPECT_EQ(U::isPercentageEncodedString(c.in), c.encoded) << c.in;
    auto url = U::getURLFromString(c.in);
    EXPECT_EQ(url ? std::optional(url->absoluteString()) : std::nullopt, c.url) << c.in;
  }
  EXPECT_FALSE(U::getURLFromString(std::nullopt));
  EXPECT_EQ(U::getAttachmentIDForURL(U::getURLFromString("http://h/a b.png")),
            U::getAttachmentIDForURL(U::getURLFromString("http://h/a%20b.png")));
  EXPECT_EQ(U::getAttachmentIDForURL(std::nullopt), std::nullopt);
  EXPECT_EQ(U::getAttachmentIDForURL(Url::parse("http://127.0.0.1:8765/hero.jpg")),
            "c6cca74b84653ca4192ed5d8f72e4254");
  EXPECT_EQ(U::MD5hashForString(std::string_view("abc\0def", 7)),
            "900150983cd24fb0d6963f7d28e17f72");  // hashed up to the first zero byte
}

TEST(ZVRichNotifUtilsTest, GifDetectionAndImageNames) {
  struct Case {
    const char* url;
    bool gif;
  } cases[] = {{"http://h/a.GIF?size=2", true},   {"http://h/a.gif", true},
               {"http://h/a.png?f=b.gif", false}, {"http://h/a.gifv", false},
               {"http://h/a.Gif#x?y", false},     {"http://h/photo.jpeg", false}};
  for (const auto& c : cases) {
    Url url = *Url::parse(c.url);
    EXPECT_EQ(U::isImageGifWithURL(url), c.gif) << c.url;
    EXPECT_EQ(U::getAttachmentImageNameForURL(url),
              U::MD5hashForString(c.url) + (c.gif ? ".gif" : ".png"));
  }
}

}  // namespace
}  // namespace zv

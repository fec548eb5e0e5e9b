#include <gtest/gtest.h>

#include "model/ZVRichNotifUtils.h"

namespace zv {
namespace {

using U = ZVRichNotifUtils;

std::optional<std::string> urlText(const std::optional<std::string>& s) {
  auto url = U::getURLFromString(s);
  return url ? std::optional(url->absoluteString()) : std::nullopt;
}

TEST(ZVRichNotifUtilsMediaTest, UrlFromStringEncodesOnlyStringsWithoutEscapes) {
  struct Case {
    std::optional<std::string> in;
    bool encoded;
    std::optional<std::string> url;
  } cases[] = {
      {std::nullopt, true, std::nullopt},
      {"", false, std::nullopt},
      {"http://h/a b.png", false, "http://h/a%20b.png"},
      {"http://h/a%20b.png", true, "http://h/a%20b.png"},
      {"http://h/a.png#top", false, "http://h/a.png%23top"},  // no escapes: "#" is encoded
      {"http://h/a%20b.png#top", true, "http://h/a%20b.png#top"},
      {"http://h/caf\xC3\xA9.png", false, "http://h/caf%C3%A9.png"},
      {"http://h/q?x=1&y=[2]", false, "http://h/q?x=1&y=%5B2%5D"},
      {"http://h/100%", true, std::nullopt},           // a broken escape: taken as encoded, no URL
      {"http://h/%20 x", true, std::nullopt},          // escaped yet a raw space: does not parse
      {"http://h/%FF.png", true, "http://h/%FF.png"},  // decodes to bad UTF-8: encoded
  };
  for (const auto& c : cases) {
    if (c.in) {
      EXPECT_EQ(U::isPercentageEncodedString(*c.in), c.encoded) << *c.in;
    }
    EXPECT_EQ(urlText(c.in), c.url) << c.in.value_or("(nil)");
  }
  EXPECT_EQ(U::getAttachmentIDForURL(U::getURLFromString("http://h/a b.png")),
            U::getAttachmentIDForURL(U::getURLFromString("http://h/a%20b.png")));
  EXPECT_EQ(U::getAttachmentIDForURL(std::nullopt), std::nullopt);
}

TEST(ZVRichNotifUtilsMediaTest, Md5HashesUtf8BytesUpToTheFirstZero) {
  EXPECT_EQ(U::MD5hashForString(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(U::MD5hashForString("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(U::MD5hashForString(std::string_view("abc\0def", 7)), U::MD5hashForString("abc"));
  EXPECT_EQ(U::getAttachmentIDForURL(Url::parse("http://127.0.0.1:8765/hero.jpg")),
            "c6cca74b84653ca4192ed5d8f72e4254");
}

TEST(ZVRichNotifUtilsMediaTest, GifDetectionAndFileNames) {
  struct Case {
    const char* url;
    bool gif;
  } cases[] = {
      {"http://h/a.GIF?size=2", true}, {"http://h/a.gif", true}, {"http://h/a.png?f=b.gif", false},
      {"http://h/a.gifv", false},      {"http://h/gif", false},  {"http://h/a.Gif#x?y", false},
  };
  for (const auto& c : cases) {
    Url url = *Url::parse(c.url);
    EXPECT_EQ(U::isImageGifWithURL(url), c.gif) << c.url;
    EXPECT_EQ(U::getAttachmentImageNameForURL(url),
              U::MD5hashForString(c.url) + (c.gif ? ".gif" : ".png"))
        << c.url;
  }
  EXPECT_EQ(U::getFileExtension(*Url::parse("http://h/photo.jpeg")), "png");
  for (auto [type, ext] : {std::pair<std::optional<std::string>, const char*>{"image", "png"},
                           {"audio", "mp3"},
                           {"video", "mp4"},
                           {"Video", "png"},
                           {std::nullopt, "png"}}) {
    EXPECT_EQ(U::getDefaultExtensionForMediaType(type), ext);
  }
}

}  // namespace
}  // namespace zv

#include <gtest/gtest.h>

#include "platform/foundation/Md5.h"
#include "zentrova/Exception.h"
#include "zentrova/Url.h"

namespace zv {
namespace {

TEST(UrlTest, ParseKeepsTheTextAndFindsTheExtension) {
  struct Case {
    const char* text;
    bool parses;
    const char* extension;
  };
  const Case cases[] = {
      {"https://cdn.example.com/a/b.png?x=1#f", true, "png"},
      {"https://cdn.example.com/a/B.GIF?size=2", true, "GIF"},
      {"https://cdn.example.com/a/noext", true, ""},
      {"https://cdn.example.com/dir.jpg/", true, "jpg"},
      {"https://cdn.example.com/.gif", true, ""},
      {"https://cdn.example.com/a%20b.webp", true, "webp"},
      {"https://cdn.example.com/a.p%00ng", true, ""},
      {"https://cdn.example.com/a.%FF", true, ""},
      {"https://cdn.example.com/a.p%0Ang", true, ""},
      {"https://cdn.example.com/a.%C3%A9", true, "\xc3\xa9"},
      {"https://HOST.example.com/x.png", true, "png"},
      {"relative/path.mp4", true, "mp4"},
      {"https://cdn.example.com/a b.png", false, ""},
      {"https://cdn.example.com/100%", false, ""},
      {"https://cdn.example.com/caf\xc3\xa9.png", false, ""},
      {"https://cdn.example.com/{x}.png", false, ""},
  };
  for (const auto& c : cases) {
    auto u = Url::parse(c.text);
    ASSERT_EQ(u.has_value(), c.parses) << c.text;
    if (!u) continue;
    EXPECT_EQ(u->absoluteString(), c.text);
    EXPECT_EQ(u->pathExtension(), c.extension) << c.text;
  }
}

TEST(UrlTest, PercentEncodingUsesUpperCaseAndTheQuerySet) {
  EXPECT_EQ(percentEncodeQueryAllowed("https://x.com/a b.png?q=1&r=caf\xc3\xa9#frag"),
            "https://x.com/a%20b.png?q=1&r=caf%C3%A9%23frag");
  EXPECT_EQ(percentEncodeQueryAllowed("-._~!$&'()*+,;=:@/?"), "-._~!$&'()*+,;=:@/?");
  EXPECT_EQ(percentEncodeQueryAllowed("%[]\"<>\\^`{|}"), "%25%5B%5D%22%3C%3E%5C%5E%60%7B%7C%7D");
}

TEST(UrlTest, PercentDecoding) {
  const std::pair<const char*, std::optional<std::string>> cases[] = {
      {"a%20b", "a b"},       {"plain", "plain"},    {"%C3%A9", "\xc3\xa9"}, {"%c3%a9", "\xc3\xa9"},
      {"100%", std::nullopt}, {"%zz", std::nullopt}, {"%2", std::nullopt},   {"%FF", std::nullopt},
  };
  for (const auto& [in, out] : cases) EXPECT_EQ(percentDecode(in), out) << in;
}

TEST(UrlTest, Components) {
  auto u = Url::fromComponents("https", "reports.example.com", 443, "/v2/report/add/A B");
  ASSERT_TRUE(u);
  EXPECT_EQ(u->absoluteString(), "https://reports.example.com:443/v2/report/add/A%20B");
  auto noPort = Url::fromComponents("http", "127.0.0.1", std::nullopt, "/p");
  EXPECT_EQ(noPort->absoluteString(), "http://127.0.0.1/p");
  EXPECT_FALSE(Url::fromComponents("https", "h", std::nullopt, "relative"));
  EXPECT_THROW(Url::fromComponents("ht tp", "h", std::nullopt, "/"), Exception);
  EXPECT_EQ(Url::fileUrl("/tmp/a b.png").absoluteString(), "file:///tmp/a%20b.png");
  EXPECT_EQ(Url::fileUrl("rel/x.png").filePath(), std::filesystem::current_path() / "rel/x.png");
}

TEST(UrlTest, Md5MatchesRfc1321Vectors) {
  EXPECT_EQ(md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(md5Hex("abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(md5Hex("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
}

}  // namespace
}  // namespace zv

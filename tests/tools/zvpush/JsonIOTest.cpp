#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <fstream>
#include <string>

#include "support/TestSupport.h"

namespace {

TEST(JsonIOTest, APayloadPathThatIsADirectorySaysSo) {
  zvtest::TempDir dir;
  for (const char* command : {"inspect", "service"}) {
    auto run = zvtest::runZvpush(std::string(command) + " " + dir.path().string() + " 2>&1");
    EXPECT_EQ(run.exit, 2) << command;
    EXPECT_NE(run.out.find(dir.path().string() + " is a directory"), std::string::npos) << run.out;
  }
}

// Percent-encoded bytes in a media URL that cannot be part of a file name: the media type's
// default extension names the attachment, and what zvpush prints stays UTF-8 JSON.
TEST(JsonIOTest, MediaUrlsWithBytesNoFileNameTakesPrintAsValidJson) {
  zvtest::TempDir dir;
  struct Case {
    const char* url;
    const char* type;
    const char* extension;
  } cases[] = {
      {"https://x.example/a.p%00ng", "image", ".png"},
      {"https://x.example/a.%FF", "video", ".mp4"},
      {"https://x.example/a.g%0Aif", "audio", ".mp3"},
      {"https://x.example/%FF.jpg", "image", ".jpg"},
  };
  for (const auto& c : cases) {
    std::ofstream(dir.path() / "p.json")
        << R"({"aps": {"alert": {"title": "t", "body": "b"}, "mutable-content": 1},
              "zentrova": {"cid": "c", "app_id": "A", "media-attachment": ")"
        << c.url << R"(", "media-type": ")" << c.type << R"("}})";
    auto run = zvtest::runZvpush("inspect " + (dir.path() / "p.json").string());
    ASSERT_EQ(run.exit, 0) << c.url;
    boost::json::error_code ec;
    boost::json::value printed = boost::json::parse(run.out, ec);  // refuses bytes not UTF-8
    ASSERT_FALSE(ec) << c.url << ": " << ec.message();
    std::string name(printed.at("media").at(0).at("fileName").as_string());
    EXPECT_TRUE(name.ends_with(c.extension)) << c.url << ": " << name;
    EXPECT_EQ(name.size(), 32 + std::string(c.extension).size()) << c.url;
  }
}

}  // namespace

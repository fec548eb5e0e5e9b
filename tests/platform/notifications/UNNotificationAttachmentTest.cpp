#include <gtest/gtest.h>

#include <fstream>

#include "support/TestSupport.h"
#include "zentrova/UNNotificationAttachment.h"

namespace zv {
namespace {

using Attachment = UNNotificationAttachment;
constexpr std::uintmax_t kMB = Attachment::kMegabyte;

std::string sample(const std::string& name) {
  return zvtest::readFile(std::filesystem::path(ZV_SOURCE_DIR) / "tests/data/media" / name);
}

TEST(UNNotificationAttachmentTest, TypeFromBytesAndSizeLimits) {
  struct Case {
    const char* fileName;  // deliberately misleading: the type comes from the bytes
    std::string bytes;
    std::uintmax_t size;  // larger than the bytes: a sparse tail up to this size
    const char* type;     // expected MIME type, or nullptr when refused with errorCode
    long errorCode;
  } cases[] = {
      {"a.mp4", sample("sample.png"), 0, "image/png", 0},
      {"a.png", sample("sample.jpg"), 0, "image/jpeg", 0},
      {"a", sample("sample.gif"), 0, "image/gif", 0},
      {"a.gif", sample("sample.wav"), 0, "audio/x-wav", 0},
      {"a.wav", sample("sample.aiff"), 0, "audio/x-aiff", 0},
      {"a.bin", sample("sample.mp3"), 0, "audio/mpeg", 0},
      {"a.bin", sample("sample.aac"), 0, "audio/x-hx-aac-adts", 0},
      {"a.bin", sample("sample.m4a"), 0, "audio/x-m4a", 0},
      {"a.png", sample("sample.mp4"), 0, "video/mp4", 0},
      {"a.png", sample("sample.mov"), 0, "video/quicktime", 0},
      {"a.png", sample("sample.mpg"), 0, "video/mpeg", 0},
      // Each limit is inclusive and follows the detected kind, not the name.
      {"big.png", sample("sample.png"), 10 * kMB, "image/png", 0},
      {"big.png", sample("sample.png"), 10 * kMB + 1, nullptr, Attachment::kInvalidFileSizeError},
      {"big.mp3", sample("sample.mp3"), 5 * kMB, "audio/mpeg", 0},
      {"big.wav", sample("sample.wav"), 5 * kMB + 1, nullptr, Attachment::kInvalidFileSizeError},
      {"big.mp4", sample("sample.gif"), 20 * kMB, nullptr, Attachment::kInvalidFileSizeError},
      {"big.mov", sample("sample.mov"), 50 * kMB, "video/quicktime", 0},
      {"big.mp4", sample("sample.mp4"), 50 * kMB + 1, nullptr, Attachment::kInvalidFileSizeError},
      // Not media, whatever the name says.
      {"a.png", "hello world\n", 0, nullptr, Attachment::kUnrecognizedTypeError},
      {"a.png", "", 0, nullptr, Attachment::kUnrecognizedTypeError},
      {"a.webp", std::string("RIFF\x1a\0\0\0WEBPVP8 ", 16) + std::string(20, '\0'), 0, nullptr,
       Attachment::kUnrecognizedTypeError},
  };
  zvtest::TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.fileName << " size " << c.size);
    auto path = dir.path() / c.fileName;
    std::ofstream(path, std::ios::binary) << c.bytes;
    if (c.size > 0) std::filesystem::resize_file(path, c.size);
    Error error;
    auto a = Attachment::attachmentWithIdentifier("id", Url::fileUrl(path), Value(), &error);
    if (c.type) {
      ASSERT_TRUE(a) << error.description();
      EXPECT_EQ(a->type(), c.type);
      EXPECT_EQ(a->URL().filePath(), path);
    } else {
      EXPECT_FALSE(a);
      EXPECT_EQ(error.domain, Error::kAttachmentDomain);
      EXPECT_EQ(error.code, c.errorCode);
      EXPECT_NE(error.localizedDescription.find(path.string()), std::string::npos);
    }
    std::filesystem::remove(path);
  }
}

TEST(UNNotificationAttachmentTest, RefusesWhatIsNotALocalFileAndNamesTheNameless) {
  zvtest::TempDir dir;
  std::filesystem::create_directory(dir.path() / "folder.png");
  for (const Url& url :
       {Url::fileUrl(dir.path() / "missing.png"), Url::fileUrl(dir.path() / "folder.png"),
        *Url::parse("https://example.com/a.png")}) {
    SCOPED_TRACE(url.absoluteString());
    Error error;
    EXPECT_FALSE(Attachment::attachmentWithIdentifier("id", url, Value(), &error));
    EXPECT_EQ(error.code, Attachment::kInvalidUrlError);
  }
  Url gif = Url::fileUrl(std::filesystem::path(ZV_SOURCE_DIR) / "tests/data/media/sample.gif");
  auto a = Attachment::attachmentWithIdentifier("", gif, Value(), nullptr);
  auto b = Attachment::attachmentWithIdentifier("", gif, Value(), nullptr);
  ASSERT_TRUE(a && b && !a->identifier().empty());
  EXPECT_NE(a->identifier(), b->identifier());
}

}  // namespace
}  // namespace zv

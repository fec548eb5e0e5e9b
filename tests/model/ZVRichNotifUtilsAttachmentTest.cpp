#include <gtest/gtest.h>

#include <fstream>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/FileManager.h"
#include "support/TestSupport.h"
#include "zentrova/UNNotificationAttachment.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

std::string sample(const std::string& name) {
  return zvtest::readFile(fs::path(ZV_SOURCE_DIR) / "tests/data/media" / name);
}

class ZVRichNotifUtilsAttachmentTest : public ::testing::Test {
 protected:
  // A finished download, as the URL session leaves it.
  Url download(const std::string& name, const std::string& bytes) {
    std::ofstream(downloads_.path() / name, std::ios::binary) << bytes;
    return Url::fileUrl(downloads_.path() / name);
  }
  fs::path attachments() const { return tmp_.path() / "tmp" / "Attachments"; }

  zvtest::TempDir tmp_;
  zvtest::TempDir downloads_;
  FileManager files_{tmp_.path() / "tmp"};
  zvtest::LogCapture log_;
};

TEST_F(ZVRichNotifUtilsAttachmentTest, MovesTheDownloadIntoAttachmentsAndReplacesAnEarlierOne) {
  const std::string id = "0cc175b9c0f1b6a831c399e269772661";
  const std::string name = id + ".png";
  Url first = download("download-1.tmp", sample("sample.png"));
  auto a = ZVRichNotifUtils::createWithID(id, name, first, files_);
  ASSERT_TRUE(a);
  EXPECT_EQ(a->identifier(), id);
  EXPECT_EQ(a->URL().filePath(), attachments() / name);
  EXPECT_EQ(a->type(), "image/png");
  EXPECT_FALSE(fs::exists(first.filePath()));  // moved, not copied

  // The same URL in a later notification: the file of that name is replaced.
  Url second = download("download-2.tmp", sample("sample.gif"));
  auto b = ZVRichNotifUtils::createWithID(id, name, second, files_);
  ASSERT_TRUE(b);
  EXPECT_EQ(b->type(), "image/gif");
  EXPECT_EQ(zvtest::readFile(attachments() / name), sample("sample.gif"));
  EXPECT_TRUE(log_.sink().empty());
}

TEST_F(ZVRichNotifUtilsAttachmentTest, FailuresMakeNoAttachment) {
  // A download that is not media is moved, then refused, with the error on the log sink.
  Url text = download("page.tmp", "<html>not found</html>");
  EXPECT_FALSE(ZVRichNotifUtils::createWithID("id", "id.png", text, files_));
  ASSERT_EQ(log_.sink().size(), 1u);
  EXPECT_EQ(log_.sink()[0],
            "Error Domain=ZVNotificationAttachmentErrorDomain Code=101 \"The attachment file " +
                (attachments() / "id.png").string() + " is of an unsupported type (text/html)\"");

  // A download that vanished: the move fails and its error is logged.
  Url gone = Url::fileUrl(downloads_.path() / "gone.tmp");
  EXPECT_FALSE(ZVRichNotifUtils::createWithID("id", "id.png", gone, files_));
  ASSERT_EQ(log_.sink().size(), 2u);
  EXPECT_EQ(log_.sink()[1].rfind("Error Domain=ZVFileErrorDomain Code=260 ", 0), 0u);

  // A temporary folder below a regular file: no attachments folder, no attachment, no message.
  std::ofstream(tmp_.path() / "blocker") << "x";
  files_ = FileManager(tmp_.path() / "blocker" / "tmp");
  Url image = download("image.tmp", sample("sample.jpg"));
  EXPECT_FALSE(ZVRichNotifUtils::createWithID("id", "id.jpg", image, files_));
  EXPECT_EQ(log_.sink().size(), 2u);
  EXPECT_TRUE(fs::exists(image.filePath()));
}

}  // namespace
}  // namespace zv

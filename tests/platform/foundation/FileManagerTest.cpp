#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "platform/foundation/FileManager.h"
#include "support/TestSupport.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

TEST(FileManagerTest, CreateDirectory) {
  zvtest::TempDir tmp;
  const fs::path& t = tmp.path();
  std::ofstream(t / "file") << "x";
  fs::create_directory(t / "existing");
  struct Case {
    fs::path path;
    bool intermediates;
    long errorCode;  // 0: success
  } cases[] = {
      {t / "a" / "b" / "c", true, 0},
      {t / "x" / "y", false, FileManager::kNoSuchFileError},
      {t / "existing", false, 0},
      {t / "file", true, FileManager::kWriteFileExistsError},
      {t / "file" / "sub", true, FileManager::kNoSuchFileError},  // the parent is a regular file
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path.string());
    Error error;
    EXPECT_EQ(FileManager::defaultManager().createDirectoryAtURL(Url::fileUrl(c.path),
                                                                 c.intermediates, &error),
              c.errorCode == 0);
    EXPECT_EQ(fs::is_directory(c.path), c.errorCode == 0);
    EXPECT_EQ(error.code, c.errorCode);
    EXPECT_EQ(error.localizedDescription.find(c.path.string()) != std::string::npos,
              c.errorCode != 0);
  }
}

TEST(FileManagerTest, ReplaceItemMovesTheNewFileOverTheOld) {
  zvtest::TempDir tmp;
  // /dev/shm is a memory file system, so a move from there crosses file systems.
  struct ShmDir {
    fs::path path = fs::path("/dev/shm") / ("zvtest-" + std::to_string(::getpid()));
    std::error_code ec;
    bool made = fs::create_directory(path, ec);
    ~ShmDir() { fs::remove_all(path, ec); }
  } shm;
  const fs::path t = tmp.path();
  fs::create_directory(t / "dir");
  int round = 0;
  for (const fs::path& from : {t / "new", t / "new", shm.path / "new"}) {
    if (from.parent_path() == shm.path && !shm.made) continue;
    std::string text = from.string() + std::to_string(++round);
    std::ofstream(from) << text;
    Error error;
    ASSERT_TRUE(FileManager::defaultManager().replaceItemAtURL(Url::fileUrl(t / "dir" / "target"),
                                                               Url::fileUrl(from), &error))
        << error.description();
    EXPECT_EQ(zvtest::readFile(t / "dir" / "target"), text);
    EXPECT_FALSE(fs::exists(from));
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(t / "dir"), fs::directory_iterator()), 1);

  std::ofstream(t / "src") << "kept";
  struct Case {
    fs::path target;
    fs::path source;
    long errorCode;
  } failures[] = {
      {t / "dir" / "target", t / "missing", FileManager::kReadNoSuchFileError},
      {t / "nodir" / "target", t / "src", FileManager::kNoSuchFileError},
      {t / "dir" / "target" / "below-a-file", t / "src", FileManager::kNoSuchFileError},
  };
  for (const Case& c : failures) {
    SCOPED_TRACE(c.target.string());
    Error error;
    EXPECT_FALSE(FileManager::defaultManager().replaceItemAtURL(Url::fileUrl(c.target),
                                                                Url::fileUrl(c.source), &error));
    EXPECT_EQ(error.code, c.errorCode);
    EXPECT_NE(error.localizedDescription.find(c.target.string()), std::string::npos);
  }
  EXPECT_EQ(zvtest::readFile(t / "src"), "kept");
}

}  // namespace
}  // namespace zv

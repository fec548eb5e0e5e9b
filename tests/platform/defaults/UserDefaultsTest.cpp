#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "platform/defaults/ExactJson.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/foundation/Exception.h"
#include "platform/foundation/Platform.h"
#include "support/TestSupport.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

class UserDefaultsTest : public ::testing::Test {
 protected:
  void SetUp() override { Platform::shared().setStoreDirectory(dir.path()); }
  void TearDown() override { Platform::shared().reset(); }

  std::shared_ptr<UserDefaults> suite(const std::string& name = "group.com.example.app") {
    auto s = UserDefaults::initWithSuiteName(name);
    EXPECT_TRUE(s && s->available());
    return s;
  }

  zvtest::TempDir dir;
};

TEST_F(UserDefaultsTest, SuiteNamesMapToFilesInsideTheFolder) {
  struct Case {
    std::string name;
    std::optional<std::string> file;
  } cases[] = {
      {"group.com.example.app", "group.com.example.app.sqlite"},
      {"a/b", "a%2Fb.sqlite"},
      {"../../etc/passwd", "..%2F..%2Fetc%2Fpasswd.sqlite"},
      {"50% off", "50%25%20off.sqlite"},
      {"caf\xC3\xA9", "caf%C3%A9.sqlite"},
      {std::string("nul\0in", 6), "nul%00in.sqlite"},
      {"", std::nullopt},
      {".", std::nullopt},
      {"..", std::nullopt},
      {"....", std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(UserDefaults::fileNameForSuite(c.name), c.file) << c.name;
    EXPECT_EQ(UserDefaults::initWithSuiteName(c.name) == nullptr, !c.file) << c.name;
  }
  std::string longName(300, '/');
  auto file = UserDefaults::fileNameForSuite(longName);
  ASSERT_TRUE(file);
  EXPECT_LE(file->size(), 210u);
  EXPECT_NE(file, UserDefaults::fileNameForSuite(longName + "x"));

  suite("../escape")->setObject(Value("x"), "k");
  EXPECT_TRUE(fs::exists(dir.path() / "..%2Fescape.sqlite"));
  EXPECT_FALSE(fs::exists(dir.path().parent_path() / "escape.sqlite"));
}

TEST_F(UserDefaultsTest, ValuesKeepTheirKindsExactly) {
  const char* texts[] = {
      R"("text")",
      "443",
      "-7",
      "18446744073709551615",
      "1700000000.25",
      "1700000086.8022773",
      "2.0",
      "true",
      "false",
      "null",
      "[]",
      "{}",
      R"([1, 2.5, "x", [true, {"deep": [1700000000.999]}]])",
      R"({"zov_params": {"k": "v", "n": 1}, "list": [{"a": 1.0}]})",
  };
  auto s = suite();
  for (const char* text : texts) s->setObject(Value(ExactJson::parse(text)), text);
  // A second suite on the same file and a raw reader see what was written, not a cached copy.
  boost::json::object all =
      UserDefaults::initWithSuiteName(s->suiteName())->dictionaryRepresentation();
  ASSERT_EQ(all.size(), std::size(texts));
  for (const char* text : texts) {
    boost::json::value expected = ExactJson::parse(text);
    EXPECT_EQ(all.at(text), expected) << text;
    EXPECT_EQ(all.at(text).kind(), expected.kind()) << text;
    EXPECT_EQ(s->objectForKey(text).json(), expected) << text;
  }
  EXPECT_DOUBLE_EQ(all.at("1700000086.8022773").as_double(), 1700000086.8022773);
  EXPECT_TRUE(all.at("443").is_int64());
  EXPECT_TRUE(all.at("2.0").is_double());
  EXPECT_TRUE(s->objectForKey("absent").isNil());

  EXPECT_TRUE(s->removeObject("443"));
  EXPECT_TRUE(s->setObject(Value(), "-7"));  // nil removes
  EXPECT_TRUE(s->objectForKey("443").isNil());
  EXPECT_EQ(s->dictionaryRepresentation().size(), std::size(texts) - 2);
  EXPECT_TRUE(s->synchronize());
}

TEST_F(UserDefaultsTest, TransactionsCommitOrRollBackAsAWhole) {
  auto s = suite();
  s->setObject(Value("before"), "a");
  EXPECT_THROW(s->transaction([&] {
    s->setObject(Value("inside"), "a");
    EXPECT_EQ(s->objectForKey("a").string(), "inside");
    throw Exception("Test", "boom");
  }),
               Exception);
  EXPECT_EQ(s->objectForKey("a").string(), "before");
  EXPECT_EQ(UserDefaults::initWithSuiteName(s->suiteName())->dictionaryRepresentation().at("a"),
            "before");

  EXPECT_TRUE(s->update("n", [](const Value& v) {
    return Value(boost::json::value(v.isNil() ? 1 : v.integerValue() + 1));
  }));
  EXPECT_TRUE(s->update(
      "n", [](const Value& v) { return Value(boost::json::value(v.integerValue() * 10)); }));
  EXPECT_EQ(s->objectForKey("n").integerValue(), 10);
  EXPECT_TRUE(s->update("n", [](const Value&) { return Value(); }));
  EXPECT_TRUE(s->objectForKey("n").isNil());
}

TEST_F(UserDefaultsTest, SeesWritesOfOtherProcesses) {
  auto s = suite();
  s->setObject(Value("parent"), "k");
  EXPECT_EQ(s->objectForKey("k").string(), "parent");  // now cached in this process
  pid_t child = fork();
  if (child == 0) {
    auto c = UserDefaults::initWithSuiteName("group.com.example.app");
    bool ok = c && c->objectForKey("k").string() == "parent" && c->setObject(Value("child"), "k");
    _exit(ok ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(s->objectForKey("k").string(), "child");
}

// Overwrites the second and third pages of a database that has spilled over several pages.
void damagePages(const fs::path& file) {
  std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
  f.seekp(4096);
  std::string junk(8192, '\xAB');
  f.write(junk.data(), junk.size());
}

TEST_F(UserDefaultsTest, DamagedFilesAreMovedAsideAndTheSuiteStartsEmpty) {
  struct Case {
    const char* name;
    std::function<void(const fs::path&)> damage;
  } cases[] = {
      {"text", [](const fs::path& f) { std::ofstream(f) << "this is not a database at all"; }},
      {"pages",
       [](const fs::path& f) {
         sqlite3* db = nullptr;
         sqlite3_open(f.c_str(), &db);
         sqlite3_exec(db,
                      "CREATE TABLE zv_defaults(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT "
                      "NULL);"
                      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<400) "
                      "INSERT INTO zv_defaults SELECT 'k'||i, '\"'||hex(randomblob(40))||'\"' "
                      "FROM n;",
                      nullptr, nullptr, nullptr);
         sqlite3_close(db);
         damagePages(f);
       }},
      {"foreign",
       [](const fs::path& f) {
         sqlite3* db = nullptr;
         sqlite3_open(f.c_str(), &db);
         sqlite3_exec(db, "CREATE TABLE zv_defaults(other INTEGER)", nullptr, nullptr, nullptr);
         sqlite3_close(db);
       }},
  };
  for (const auto& c : cases) {
    std::string name = std::string("group.damaged.") + c.name;
    fs::path file = dir.path() / (name + ".sqlite");
    c.damage(file);
    std::string original = zvtest::readFile(file);
    zvtest::LogCapture log;
    auto s = suite(name);
    ASSERT_TRUE(s) << c.name;
    EXPECT_TRUE(s->dictionaryRepresentation().empty()) << c.name;
    EXPECT_TRUE(s->setObject(Value("fresh"), "k")) << c.name;
    EXPECT_EQ(suite(name)->objectForKey("k").string(), "fresh") << c.name;
    ASSERT_EQ(log.system().size(), 1u) << c.name;
    EXPECT_NE(log.system()[0].find("moved aside"), std::string::npos) << log.system()[0];
    int kept = 0;
    for (const auto& e : fs::directory_iterator(dir.path())) {
      std::string f = e.path().filename().string();
      if (f.rfind(name + ".sqlite.damaged-", 0) == 0 && f.find("-wal") == std::string::npos) {
        ++kept;
        EXPECT_TRUE(zvtest::readFile(e.path()) == original) << c.name;  // kept exactly
      }
    }
    EXPECT_EQ(kept, 1) << c.name;
  }
}

TEST_F(UserDefaultsTest, AFolderThatCannotBeWrittenReadsNilAndDropsWrites) {
  std::ofstream(dir.path() / "plain-file") << "x";
  std::vector<fs::path> folders = {dir.path() / "plain-file" / "stores"};
  if (geteuid() != 0) {  // permissions do not stop root
    fs::create_directory(dir.path() / "read-only");
    fs::permissions(dir.path() / "read-only", fs::perms::owner_read | fs::perms::owner_exec);
    folders.push_back(dir.path() / "read-only");
  }
  for (const fs::path& folder : folders) {
    Platform::shared().setStoreDirectory(folder);
    zvtest::LogCapture log;
    auto s = UserDefaults::initWithSuiteName("group.com.example.app");
    ASSERT_TRUE(s);
    EXPECT_FALSE(s->available());
    EXPECT_FALSE(s->setObject(Value("v"), "k"));
    EXPECT_TRUE(s->objectForKey("k").isNil());
    EXPECT_FALSE(s->update("k", [](const Value&) { return Value("v"); }));
    EXPECT_TRUE(s->dictionaryRepresentation().empty());
    UserDefaults::initWithSuiteName("group.com.example.app");
    EXPECT_EQ(log.system().size(), 1u) << folder;  // reported once, not on every handle
  }
}

}  // namespace
}  // namespace zv

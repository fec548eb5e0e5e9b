#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/json/parse.hpp>
#include <cmath>
#include <fstream>

#include "platform/foundation/ExactJson.h"
#include "support/TestSupport.h"
#include "zentrova/Exception.h"
#include "zentrova/UserDefaults.h"

namespace zv {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

class UserDefaultsTest : public ::testing::Test {
 protected:
  std::shared_ptr<UserDefaults> suite(const std::string& name = "group.com.example.app") {
    auto s = UserDefaults::initWithSuiteName(name, dir.path());
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
      {"caf\xC3\xA9", "caf%C3%A9.sqlite"},
      {std::string("50%\0", 4), "50%25%00.sqlite"},
      {"", std::nullopt},
      {".", std::nullopt},
      {"..", std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(UserDefaults::fileNameForSuite(c.name), c.file) << c.name;
    EXPECT_EQ(UserDefaults::initWithSuiteName(c.name, dir.path()) == nullptr, !c.file) << c.name;
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
      "18446744073709551615",
      "1700000086.8022773",
      "2.0",
      "true",
      "null",
      R"([1, 2.5, "x", [true, {"deep": [1700000000.999]}]])",
      R"({"k": "v", "list": [{"a": 1.0}]})",
  };
  auto s = suite();
  for (const char* text : texts) s->setObject(Value(ExactJson::parse(text)), text);
  // Read back from the file, not from the cache.
  boost::json::object all =
      UserDefaults::initWithSuiteName(s->suiteName(), dir.path())->dictionaryRepresentation();
  ASSERT_EQ(all.size(), std::size(texts));
  for (const char* text : texts) {
    boost::json::value expected = ExactJson::parse(text);
    EXPECT_EQ(all.at(text), expected) << text;
    EXPECT_EQ(all.at(text).kind(), expected.kind()) << text;
    EXPECT_EQ(s->objectForKey(text).json(), expected) << text;
  }
  EXPECT_TRUE(s->objectForKey("absent").isNil());

  EXPECT_TRUE(s->removeObject("443"));
  EXPECT_TRUE(s->setObject(Value(), "true"));  // nil removes
  EXPECT_EQ(s->dictionaryRepresentation().size(), std::size(texts) - 2);
}

TEST_F(UserDefaultsTest, EditsAreAtomicAndNeverReachValuesHandedOut) {
  auto s = suite();
  s->setObject(Value::parse("[1]"), "list");
  Value held = s->objectForKey("list");
  auto append = [](int n) { return [n](boost::json::value& v) { v.as_array().push_back(n); }; };
  EXPECT_TRUE(s->modifyObject("list", append(2)));  // a copy: [1] is held
  EXPECT_TRUE(s->modifyObject("list", append(3)));  // in place: nobody holds [1, 2]
  EXPECT_EQ(held.json(), boost::json::parse("[1]"));

  // A transaction that raises leaves nothing behind, in the file or in the cache.
  EXPECT_THROW(s->transaction([&] {
    s->modifyObject("list", append(4));
    s->setObject(Value("inside"), "a");
    throw Exception("Test", "boom");
  }),
               Exception);
  EXPECT_EQ(s->objectForKey("list").json(), boost::json::parse("[1, 2, 3]"));
  EXPECT_TRUE(s->objectForKey("a").isNil());
  EXPECT_EQ(suite()->dictionaryRepresentation(), boost::json::parse(R"({"list": [1, 2, 3]})"));

  auto count = [](const Value& v) { return Value(boost::json::value(v.isNil() ? 1 : 2)); };
  EXPECT_TRUE(s->update("n", count));
  EXPECT_TRUE(s->update("n", count));
  EXPECT_EQ(s->objectForKey("n").integerValue(), 2);
  EXPECT_TRUE(s->update("n", [](const Value&) { return Value(); }));
  EXPECT_TRUE(s->objectForKey("n").isNil());
}

TEST_F(UserDefaultsTest, SeesWritesOfOtherProcesses) {
  auto s = suite();
  s->setObject(Value("parent"), "k");
  s->setObject(Value("parent"), "kept");  // both now cached in this process
  pid_t child = fork();
  if (child == 0) {
    auto c = UserDefaults::initWithSuiteName("group.com.example.app", dir.path());
    bool ok = c && c->objectForKey("k").string() == "parent" && c->setObject(Value("child"), "k");
    _exit(ok ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(s->objectForKey("k").string(), "child");
  EXPECT_EQ(s->objectForKey("kept").string(), "parent");
}

void runSql(const fs::path& file, const char* sql) {
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
  sqlite3_close(db);
}

// A database of ours spread over several pages, whose second and third pages are then overwritten.
void damagePages(const fs::path& file) {
  runSql(file,
         "CREATE TABLE zv_defaults(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL, version "
         "INTEGER NOT NULL); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE "
         "i<400) INSERT INTO zv_defaults SELECT 'k'||i, '\"'||hex(randomblob(40))||'\"', 0 FROM n");
  std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
  f.seekp(4096);
  std::string junk(8192, '\xAB');
  f.write(junk.data(), junk.size());
}

std::string nested(int levels, const std::string& inner = "0") {
  return std::string(levels, '[') + inner + std::string(levels, ']');
}

// What the store could not read back is refused at the write, and the earlier value stays.
TEST_F(UserDefaultsTest, ValuesThatCannotBeReadBackAreNotWritten) {
  auto s = suite();
  zvtest::LogCapture log;
  std::pair<json::value, const char*> refused[] = {
      {Value::parse(nested(512)).json(), ""},  // then wrapped once more below
      {json::value(json::object{{"a", json::array{1, HUGE_VAL}}}), "holds the number inf"},
      {json::value(-HUGE_VAL), "holds the number -inf"},
      {json::value(std::nan("")), "holds the number nan"},
      {json::value("caf\xE9"), "holds a string that is not UTF-8"},
      {json::value(json::object{{"caf\xE9", 1}}), "holds a key that is not UTF-8"},
  };
  for (auto [value, why] : refused) {
    if (!*why) {
      value = json::array{value};
      why = "is nested deeper than 512 levels";
    }
    ASSERT_TRUE(s->setObject(Value("earlier"), "k"));
    EXPECT_FALSE(s->setObject(Value(value), "k")) << why;
    EXPECT_FALSE(s->modifyObject("k", [&](json::value& v) { v = value; })) << why;
    EXPECT_EQ(UserDefaults::initWithSuiteName("group.com.example.app", dir.path())
                  ->objectForKey("k")
                  .string(),
              "earlier");
    ASSERT_FALSE(log.system().empty());
    EXPECT_NE(log.system().back().find(std::string("\"k\" was not written because it ") + why),
              std::string::npos)
        << log.system().back();
  }
  EXPECT_TRUE(s->setObject(Value::parse(nested(512)), "deepest"));
  EXPECT_EQ(s->objectForKey("deepest").json(), Value::parse(nested(512)).json());
}

// A value already unreadable in the file costs only its unreadable parts, two levels deep.
TEST_F(UserDefaultsTest, AnUnreadableStoredValueLosesOnlyItsUnreadableParts) {
  suite()->setObject(Value("x"), "made");
  std::string deep = nested(520);
  struct Case {
    std::string text;
    std::optional<std::string> read;  // nullopt: nil
  } cases[] = {
      {R"({"events": [1, 2], "pending": [{"a": 1}, {"x": Infinity}, {"b": "]}"}], "n": 3})",
       R"({"events": [1, 2], "pending": [{"a": 1}, {"b": "]}"}], "n": 3})"},
      {R"({"pending": [)" + deep + R"(, 7], "e": 1})", R"({"pending": [7], "e": 1})"},
      {R"({"pending": [)" + nested(511) + R"(, 7]})", R"({"pending": [7]})"},  // 513 in all
      {R"([1, {"a": NaN}, 2])", "[1, {}, 2]"},
      {R"({"a": 1, "b": )", std::nullopt},
      {"Infinity", std::nullopt},
  };
  auto file = dir.path() / "group.com.example.app.sqlite";
  int version = 0;  // a new one for each text, as every write makes
  for (const auto& c : cases) {
    zvtest::LogCapture log;
    std::string quoted;
    for (char ch : c.text) quoted += ch == '\'' ? std::string("''") : std::string(1, ch);
    runSql(file, ("INSERT OR REPLACE INTO zv_defaults VALUES('k', '" + quoted + "', " +
                  std::to_string(++version) + ")")
                     .c_str());
    Value v = suite()->objectForKey("k");
    if (c.read) {
      ASSERT_FALSE(v.isNil()) << c.text.substr(0, 80);
      EXPECT_EQ(v.json(), json::parse(*c.read)) << c.text.substr(0, 80);
      EXPECT_EQ(suite()->dictionaryRepresentation().at("k"), json::parse(*c.read));
    } else {
      EXPECT_TRUE(v.isNil()) << c.text;
    }
    ASSERT_FALSE(log.system().empty());
    EXPECT_NE(log.system()[0].find("the value under \"k\" is not JSON"), std::string::npos);
    EXPECT_EQ(suite()->objectForKey("made").string(), "x");
  }
}

TEST_F(UserDefaultsTest, DamagedFilesAreMovedAsideAndTheSuiteStartsEmpty) {
  struct Case {
    const char* name;
    std::function<void(const fs::path&)> damage;
  } cases[] = {
      {"text", [](const fs::path& f) { std::ofstream(f) << "this is not a database at all"; }},
      {"pages", damagePages},
      {"foreign", [](const fs::path& f) { runSql(f, "CREATE TABLE zv_defaults(other INTEGER)"); }},
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
    size_t kept = std::count_if(fs::directory_iterator(dir.path()), {}, [&](const auto& e) {
      std::string f = e.path().filename().string();
      return f.starts_with(name + ".sqlite.damaged-") && !f.ends_with("-wal") &&
             zvtest::readFile(e.path()) == original;  // kept exactly as found
    });
    EXPECT_EQ(kept, 1u) << c.name;
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
    zvtest::LogCapture log;
    auto s = UserDefaults::initWithSuiteName("group.com.example.app", folder);
    ASSERT_TRUE(s);
    EXPECT_FALSE(s->available());
    EXPECT_FALSE(s->setObject(Value("v"), "k"));
    EXPECT_TRUE(s->objectForKey("k").isNil());
    EXPECT_FALSE(s->update("k", [](const Value&) { return Value("v"); }));
    EXPECT_TRUE(s->dictionaryRepresentation().empty());
    UserDefaults::initWithSuiteName("group.com.example.app", folder);
    EXPECT_EQ(log.system().size(), 1u) << folder;  // reported once, not on every handle
  }
}

}  // namespace
}  // namespace zv

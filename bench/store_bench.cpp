// The cost of recording one event in the app-group store, against the floor that SQLite itself
// sets: a write of the same bytes into a table of the same shape, with the same journal settings.
//
// The event list is rewritten whole on every append (the per-application dictionary is one
// value), so both sides grow linearly with the number of stored events; what matters is the ratio.
// Each iteration appends to a list of N events, then (not timed) puts the list back.
//   BM_AppendEvent/N                 saveEvent; this process wrote last (the usual case)
//   BM_AppendEventOtherKeyChanged/N  the same after another process wrote another key
//   BM_AppendEventSameKeyChanged/N   the same after another process rewrote the application's
//                                    dictionary, which must then be read and parsed again
//   BM_BareWrite/N                   one INSERT of the bytes that the append writes
//   BM_FourProcesses                 4 processes x 500 appends to one suite at once, from an empty
//                                    list; fails if any event is lost
// Run with --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true: disk traffic of
// other programs otherwise lands on one side only.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/json/serialize.hpp>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "zentrova/Platform.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace {

namespace json = boost::json;
namespace fs = std::filesystem;
using zv::Value;

constexpr char kGroup[] = "group.com.example.bench";
constexpr char kApp[] = "ABC";

class Folder {
 public:
  Folder() {
    std::string tmpl = (fs::temp_directory_path() / "zvbench.XXXXXX").string();
    if (!mkdtemp(tmpl.data())) throw std::runtime_error("mkdtemp failed");
    path_ = tmpl;
  }
  ~Folder() {
    std::error_code ec;
    fs::remove_all(path_, ec);
  }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

std::shared_ptr<zv::ZVPushPayload> benchPayload() {
  auto p = std::make_shared<zv::ZVPushPayload>();
  p->pushPayloadDict = Value::parse(
      R"({"aps": {"alert": {"title": "Sale", "body": "Everything must go"}, "badge": 1},
          "zentrova": {"cid": "cmp-20231114-0042", "app_id": "ABC", "media-attachment":
          "https://cdn.example.com/a.jpg", "media-type": "image", "segment": "returning",
          "variant": "b", "sent_at": 1700000000}})");
  p->zentrovaDict = zv::ZVRichNotifUtils::validObjectForKey("zentrova", p->pushPayloadDict);
  return p;
}

// A configured suite whose application dictionary holds `count` events.
struct Suite {
  explicit Suite(size_t count) : payload(benchPayload()) {
    zv::Platform::shared().setStoreDirectory(folder.path());
    zv::Platform::shared().setBundleIdentifier("com.example.bench.service");
    zv::ZVExtensionDataManager::resetSharedManager();  // takes the folder at its next use
    auto& m = zv::ZVExtensionDataManager::sharedManager();
    m.setAppGroupID(kGroup);
    m.getZovUserDefaults()->setObject(Value::parse(R"({"sdk": "1.0", "os": "17.0"})"),
                                      "zov_params");
    m.configureDataManagerWithAppID(Value(kApp));
    json::array list;
    Value record = m.getEventDictWithName("NOTIFICATION_RECEIVED_IOS_ZOV", payload);
    for (size_t i = 0; i < count; ++i) list.push_back(record.json());
    initial = Value(json::value(std::move(list)));
    reset();
  }
  void reset() { zv::ZVExtensionDataManager::sharedManager().updateReceivedEvents(initial); }
  std::string storedText() {
    return json::serialize(zv::ZVExtensionDataManager::sharedManager()
                               .getZovUserDefaults()
                               ->objectForKey(kApp)
                               .json());
  }

  Folder folder;
  std::shared_ptr<zv::ZVPushPayload> payload;
  Value initial;
};

sqlite3* openLikeTheStore(const fs::path& file) {
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  sqlite3_exec(db,
               "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; CREATE TABLE IF NOT EXISTS "
               "zv_defaults(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL, version INTEGER "
               "NOT NULL)",
               nullptr, nullptr, nullptr);
  return db;
}

// What another process does between two appends of this one.
enum class Meanwhile { kNothing, kOtherKeyWritten, kSameKeyWritten };

void appendEvent(benchmark::State& state, Meanwhile meanwhile) {
  Suite suite(static_cast<size_t>(state.range(0)));
  auto& m = zv::ZVExtensionDataManager::sharedManager();
  // Another connection to the same file, standing for another process.
  sqlite3* other = openLikeTheStore(suite.folder.path() / "group.com.example.bench.sqlite");
  const char* sql =
      meanwhile == Meanwhile::kOtherKeyWritten
          ? "INSERT OR REPLACE INTO zv_defaults VALUES('zov_push_template_click_info', "
            "'{}', random())"
          : "UPDATE zv_defaults SET version = random() WHERE key = 'ABC'";
  for (auto _ : state) {
    m.saveEvent("ZOV_NOTIFICATION_SHOWN", suite.payload);
    state.PauseTiming();
    suite.reset();
    if (meanwhile != Meanwhile::kNothing) sqlite3_exec(other, sql, nullptr, nullptr, nullptr);
    state.ResumeTiming();
  }
  sqlite3_close(other);
  m.saveEvent("ZOV_NOTIFICATION_SHOWN", suite.payload);
  state.counters["bytes"] = static_cast<double>(suite.storedText().size());
  zv::Platform::shared().reset();
}

void BM_AppendEvent(benchmark::State& state) { appendEvent(state, Meanwhile::kNothing); }
void BM_AppendEventOtherKeyChanged(benchmark::State& state) {
  appendEvent(state, Meanwhile::kOtherKeyWritten);
}
void BM_AppendEventSameKeyChanged(benchmark::State& state) {
  appendEvent(state, Meanwhile::kSameKeyWritten);
}

// The floor: the same two writes per iteration as BM_AppendEvent (the timed one of the appended
// list, then, paused, the one that puts the list back), as bare statements. Both sides then feed
// the write-ahead log alike and pay for the same checkpoints.
void BM_BareWrite(benchmark::State& state) {
  std::string appended;
  std::string initial;
  {
    Suite suite(static_cast<size_t>(state.range(0)));
    initial = suite.storedText();
    zv::ZVExtensionDataManager::sharedManager().saveEvent("ZOV_NOTIFICATION_SHOWN", suite.payload);
    appended = suite.storedText();
    zv::Platform::shared().reset();
  }
  Folder folder;
  sqlite3* db = openLikeTheStore(folder.path() / "bare.sqlite");
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO zv_defaults(key, value, version) VALUES(?1, ?2, random()) "
                     "ON CONFLICT(key) DO UPDATE SET value = excluded.value, "
                     "version = excluded.version",
                     -1, &insert, nullptr);
  auto write = [&](const std::string& text) {
    sqlite3_bind_text(insert, 1, kApp, -1, SQLITE_STATIC);
    sqlite3_bind_text(insert, 2, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    bool ok = sqlite3_step(insert) == SQLITE_DONE;
    sqlite3_reset(insert);
    return ok;
  };
  write(initial);
  for (auto _ : state) {
    if (!write(appended)) state.SkipWithError("write failed");
    state.PauseTiming();
    write(initial);
    state.ResumeTiming();
  }
  sqlite3_finalize(insert);
  sqlite3_close(db);
  state.counters["bytes"] = static_cast<double>(appended.size());
}

void BM_FourProcesses(benchmark::State& state) {
  constexpr int kProcesses = 4;
  constexpr int kAppends = 500;
  for (auto _ : state) {
    Suite suite(0);
    auto& m = zv::ZVExtensionDataManager::sharedManager();
    pid_t children[kProcesses];
    for (pid_t& child : children) {
      child = fork();
      if (child == 0) {
        for (int i = 0; i < kAppends; ++i) m.saveEvent("ZOV_NOTIFICATION_SHOWN", suite.payload);
        _exit(0);
      }
    }
    bool allExited = true;
    for (pid_t child : children) {
      int status = 0;
      waitpid(child, &status, 0);
      allExited = allExited && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    size_t stored = m.getReceivedEvents().array().size();
    state.counters["events"] = static_cast<double>(stored);
    if (!allExited || stored != kProcesses * kAppends) state.SkipWithError("events were lost");
    zv::Platform::shared().reset();
  }
}

}  // namespace

BENCHMARK(BM_AppendEvent)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_AppendEventOtherKeyChanged)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_AppendEventSameKeyChanged)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_BareWrite)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FourProcesses)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

// Building and serialising the reports body for 10,000 stored events (getRequestBodyWithEvents:
// reading the query parameters and identifiers from a real store, then writing the body) against
// Boost.JSON serialising the same event array alone. The body writes the stored events straight
// from their tree, so it should cost little more than the bare serialisation (goal: ratio <= 1.5).
// BM_BodyAgainstBare times both alternately in one loop and reports the ratio as a counter.
#include <benchmark/benchmark.h>

#include <boost/json/serialize.hpp>
#include <chrono>
#include <filesystem>
#include <string>

#include "platform/foundation/Clock.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "zentrova/Platform.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/Value.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace {

namespace json = boost::json;
constexpr int kEvents = 10000;
constexpr char kGroup[] = "group.bench.reports";

// Event records as the store keeps them: received and shown events of many campaigns.
zv::Value events() {
  json::array list;
  for (int i = 0; i < kEvents; ++i) {
    std::string n = std::to_string(i);
    json::object attrs{
        {"cid", "cmp-2024-" + n}, {"app_id", "zv-app-7f3c21"}, {"segment", "returning-buyers"}};
    if (i % 2) attrs["template_name"] = "Weekly picks carousel";
    list.push_back(json::object{
        {"EVENT_ACTION", i % 2 ? "ZOV_NOTIFICATION_SHOWN" : "NOTIFICATION_RECEIVED_IOS_ZOV"},
        {"EVENT_ATTRS", std::move(attrs)},
        {"EVENT_G_TIME", std::to_string(1700000000 + i)},
        {"EVENT_L_TIME", "14:11:2023:23:13:20"},
        {"N_I_E", 1}});
  }
  return zv::Value(json::value(std::move(list)));
}

// A configured store in a fresh folder: app group, application, query parameters, identifiers.
struct Fixture {
  Fixture() : dir(std::filesystem::temp_directory_path() / "zv-reporting-bench") {
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    zv::Platform::shared().setStoreDirectory(dir);
    zv::ZVExtensionDataManager::resetSharedManager();  // takes the folder at its next use
    auto& store = zv::ZVExtensionDataManager::sharedManager();
    store.setAppGroupID(kGroup);
    auto suite = zv::UserDefaults::initWithSuiteName(kGroup, dir);
    suite->setObject(zv::Value::parse(R"({"sdk":"2.4.1","os":"ios","ver":"17.0"})"), "zov_params");
    suite->setObject(zv::Value::parse(R"({"uid":"U-81f2","device":"D-77"})"), "zov_identifiers");
    store.configureDataManagerWithAppID(zv::Value("zv-app-7f3c21"));
  }
  ~Fixture() { std::filesystem::remove_all(dir); }
  std::filesystem::path dir;
  zv::Value list = events();
};

Fixture& fixture() {
  static Fixture f;
  return f;
}

void BM_BareSerialize(benchmark::State& state) {
  const json::value& list = fixture().list.json();
  for (auto _ : state) benchmark::DoNotOptimize(json::serialize(list));
}
BENCHMARK(BM_BareSerialize)->Unit(benchmark::kMillisecond);

void BM_RequestBody(benchmark::State& state) {
  auto& manager = zv::ZVExtensionNetworkManager::sharedManager();
  const zv::Value& list = fixture().list;
  for (auto _ : state) benchmark::DoNotOptimize(manager.getRequestBodyWithEvents(list));
}
BENCHMARK(BM_RequestBody)->Unit(benchmark::kMillisecond);

void BM_BodyAgainstBare(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  auto& manager = zv::ZVExtensionNetworkManager::sharedManager();
  const zv::Value& list = fixture().list;
  Clock::duration body{}, bare{};
  for (auto _ : state) {
    auto t0 = Clock::now();
    benchmark::DoNotOptimize(manager.getRequestBodyWithEvents(list));
    auto t1 = Clock::now();
    benchmark::DoNotOptimize(json::serialize(list.json()));
    auto t2 = Clock::now();
    body += t1 - t0;
    bare += t2 - t1;
  }
  state.counters["ratio"] = static_cast<double>(body.count()) / static_cast<double>(bare.count());
}
BENCHMARK(BM_BodyAgainstBare)->Unit(benchmark::kMillisecond);

}  // namespace

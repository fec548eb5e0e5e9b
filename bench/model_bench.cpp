// Building the envelope with its whole rich model from an already parsed 4 KB carousel payload,
// against parsing those 4 KB with Boost.JSON. The model shares the parsed tree instead of copying
// it, so building it should cost no more than the parse (ratio <= 1).
#include <benchmark/benchmark.h>

#include <boost/json/parse.hpp>
#include <chrono>
#include <string>

#include "model/ZVPushPayload.h"
#include "model/ZVRichPush.h"
#include "platform/foundation/Clock.h"

namespace {

// A carousel of seven cards, each with an image, a text and a button widget and two actions.
std::string carouselPayload() {
  std::string cards;
  for (int i = 1; i <= 7; ++i) {
    std::string n = std::to_string(i);
    if (i > 1) cards += ",";
    cards += R"({"id":)" + n + R"(,"type":"card","style":{"bgColor":"#F9731)" + n +
             R"("},"widgets":[{"id":)" + n +
             R"(1,"type":"image","content":"https://cdn.example.com/campaigns/2024/summer/card-)" +
             n + R"(.png"},{"id":)" + n + R"(2,"type":"text","content":"<b>Pick )" + n +
             R"(</b> of the week: hand-picked for you"},{"id":)" + n +
             R"(3,"type":"button","content":"Shop now","style":{"bgColor":"#0F172A"}}],)"
             R"("actions":[{"name":"navigate","type":"deepLink","value":"shop://category/)" +
             n + R"(","kvPairs":{"card":")" + n +
             R"(","src":"carousel"}},)"
             R"({"name":"coupon","value":"PICK)" +
             n + R"("}]})";
  }
  return R"({"aps":{"alert":{"title":"New arrivals","body":"Swipe through this week's picks"},)"
         R"("mutable-content":1,"category":"ZV_RICH"},"zentrova":{"cid":"cmp-2024-0715-arrivals",)"
         R"("app_id":"zv-app-7f3c21","segment":"returning-buyers"},"zovFeatures":{"richPush":{)"
         R"("displayName":"Weekly picks carousel","title":"New arrivals are <b>here</b>",)"
         R"("subtitle":"7 picks for you","body":"Sneakers, backpacks and watches.",)"
         R"("ios":{"category":"ZV_RICH_CAROUSEL","sound":"default"},"expanded":{)"
         R"("type":"imageCarousel","autoStart":true,"style":{"bgColor":"#0F172A"},"cards":[)" +
         cards +
         R"(]},"defaultActions":[{"name":"navigate","type":"deepLink","value":"shop://arrivals"}]}}})";
}

const std::string& text() {
  static const std::string t = carouselPayload();
  return t;
}

void BM_ParseWithBoostJson(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(boost::json::parse(text()));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text().size()));
}
BENCHMARK(BM_ParseWithBoostJson);

void BM_BuildEnvelopeAndRichModel(benchmark::State& state) {
  zv::Value parsed = zv::Value::parse(text());
  if (!zv::ZVPushPayload::initWithPushPayload(parsed)->richPush) state.SkipWithError("no model");
  for (auto _ : state) benchmark::DoNotOptimize(zv::ZVPushPayload::initWithPushPayload(parsed));
  state.counters["payloadBytes"] = static_cast<double>(text().size());
}
BENCHMARK(BM_BuildEnvelopeAndRichModel);

// Both in the same loop, alternating, so that the ratio compares like with like.
void BM_ModelToParseRatio(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  zv::Value parsed = zv::Value::parse(text());
  Clock::duration parse{}, model{};
  for (auto _ : state) {
    auto t0 = Clock::now();
    benchmark::DoNotOptimize(boost::json::parse(text()));
    auto t1 = Clock::now();
    benchmark::DoNotOptimize(zv::ZVPushPayload::initWithPushPayload(parsed));
    auto t2 = Clock::now();
    parse += t1 - t0;
    model += t2 - t1;
  }
  state.counters["ratio"] = static_cast<double>(model.count()) / static_cast<double>(parse.count());
}
BENCHMARK(BM_ModelToParseRatio);

}  // namespace

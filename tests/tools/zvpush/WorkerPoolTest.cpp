// zvpush check's worker processes: every item answered once, in any order, and an item whose
// worker dies (a decoder that crashes) reported lost with the signal while the rest go on.
#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <csignal>
#include <map>
#include <set>

#include "check/WorkerPool.h"

namespace {

namespace json = boost::json;

TEST(WorkerPoolTest, AWorkerThatDiesCostsOnlyItsItem) {
  struct Case {
    int workers;
    std::set<std::size_t> crashing;
  } cases[] = {{1, {}}, {2, {}}, {2, {3}}, {3, {0, 7}}, {1, {9}}};
  for (const auto& c : cases) {
    std::map<std::size_t, json::value> done;
    std::map<std::size_t, std::string> lost;
    zvpush::WorkerPool::run(
        10, c.workers,
        [&](std::size_t i) -> json::value {
          if (c.crashing.count(i)) std::raise(SIGKILL);  // what no handler can soften
          if (i == 5) throw std::runtime_error("five");
          return json::object{{"square", i * i}};
        },
        [&](std::size_t i, json::value v) { EXPECT_TRUE(done.emplace(i, v).second) << i; },
        [&](std::size_t i, const std::string& why) { lost.emplace(i, why); });
    SCOPED_TRACE(c.workers);
    EXPECT_EQ(done.size() + lost.size(), 10u);
    for (std::size_t i : c.crashing) {
      EXPECT_EQ(lost[i], "killed by signal 9 (Killed)");
    }
    for (const auto& [i, v] : done) {
      if (i == 5) {
        EXPECT_EQ(v, (json::object{{"error", "five"}}));
      } else {
        EXPECT_EQ(v.at("square"), i * i);
      }
    }
  }
}

}  // namespace

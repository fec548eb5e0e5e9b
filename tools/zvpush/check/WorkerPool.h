// The processes zvpush check spreads a batch over. The content side is single-threaded by design
// (views, the run loop, the screen, the system version and the template handler are process-wide
// and main-thread only), so the batch runs in worker processes forked from the command: each makes
// its content side ready once and keeps it (fonts, interface files) for every item it takes, one
// at a time from the parent over a pipe (the next index), answering with one line of JSON. A worker
// that dies while on an item (a decoder that crashes, a signal) costs only that item: the parent
// reports it as lost, with how the worker ended, and forks a fresh worker for what is left. Call it
// from a process that runs no other thread (fork copies only the caller's), which is why the parent
// itself never loads the content side.
#pragma once

#include <boost/json/value.hpp>
#include <cstddef>
#include <functional>
#include <string>

namespace zvpush {

struct WorkerPool {
  // Runs in a worker: the result of item index (it should not throw; what it throws becomes
  // {"error": what}).
  using Work = std::function<boost::json::value(std::size_t index)>;
  // Runs in the parent, once per item, in the order items finish.
  using Done = std::function<void(std::size_t index, boost::json::value result)>;
  // Runs in the parent for an item whose worker ended before answering: why ("killed by signal
  // 11 (Segmentation fault)").
  using Lost = std::function<void(std::size_t index, const std::string& why)>;

  // Items 0 .. count-1 over `workers` processes (at least 1, at most count).
  static void run(std::size_t count, int workers, const Work& work, const Done& done,
                  const Lost& lost);
};

}  // namespace zvpush

#include "check/WorkerPool.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/json.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <optional>
#include <vector>

namespace zvpush {

namespace {

namespace json = boost::json;

struct Worker {
  pid_t pid = -1;
  int toChild = -1, fromChild = -1;
  std::optional<std::size_t> busy;
  std::string pending;  // what the worker wrote after its last full line
};

bool writeAll(int fd, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

// The worker's side: an index a line in, a JSON result a line out, until the parent closes.
[[noreturn]] void serve(int in, int out, const WorkerPool::Work& work) {
  std::string buffer;
  char chunk[256];
  for (;;) {
    auto newline = buffer.find('\n');
    if (newline == std::string::npos) {
      ssize_t n = ::read(in, chunk, sizeof chunk);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) ::_exit(0);
      buffer.append(chunk, static_cast<std::size_t>(n));
      continue;
    }
    std::size_t index = std::stoul(buffer.substr(0, newline));
    buffer.erase(0, newline + 1);
    json::value result;
    try {
      result = work(index);
    } catch (const std::exception& e) {
      result = json::object{{"error", e.what()}};
    }
    if (!writeAll(out, json::serialize(result) + "\n")) ::_exit(1);
  }
}

std::string howItEnded(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) {
    return "killed by signal " + std::to_string(WTERMSIG(status)) + " (" +
           strsignal(WTERMSIG(status)) + ")";
  }
  return "ended with status " + std::to_string(WEXITSTATUS(status));
}

class Pool {
 public:
  Pool(std::size_t count, const WorkerPool::Work& work, const WorkerPool::Done& done,
       const WorkerPool::Lost& lost)
      : count_(count), work_(work), done_(done), lost_(lost) {}

  void run(int workers) {
    for (int i = 0; i < workers; ++i) start();
    while (!workers_.empty()) wait();
  }

 private:
  void start() {
    if (next_ >= count_) return;
    int down[2], up[2];
    if (::pipe2(down, O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
    if (::pipe2(up, O_CLOEXEC) != 0) {
      ::close(down[0]);
      ::close(down[1]);
      throw std::runtime_error("cannot make a pipe");
    }
    std::cout.flush();
    std::fflush(nullptr);
    pid_t pid = ::fork();
    if (pid < 0) throw std::runtime_error("cannot start a worker process");
    if (pid == 0) {
      // Only this worker's own ends stay open, so that each sees its parent close.
      for (const Worker& w : workers_) {
        ::close(w.toChild);
        ::close(w.fromChild);
      }
      ::close(down[1]);
      ::close(up[0]);
      ::signal(SIGPIPE, SIG_DFL);
      serve(down[0], up[1], work_);
    }
    ::close(down[0]);
    ::close(up[1]);
    Worker w;
    w.pid = pid;
    w.toChild = down[1];
    w.fromChild = up[0];
    workers_.push_back(std::move(w));
    give(workers_.back());
  }

  // The next item to w, or its pipe closed when none is left.
  void give(Worker& w) {
    if (next_ < count_ && writeAll(w.toChild, std::to_string(next_) + "\n")) {
      w.busy = next_++;
      return;
    }
    w.busy.reset();
    if (w.toChild >= 0) ::close(w.toChild);
    w.toChild = -1;
  }

  void wait() {
    std::vector<pollfd> fds;
    for (const Worker& w : workers_) fds.push_back({w.fromChild, POLLIN, 0});
    if (::poll(fds.data(), fds.size(), -1) < 0) {
      if (errno == EINTR) return;
      throw std::runtime_error("cannot wait for the worker processes");
    }
    for (std::size_t i = fds.size(); i-- > 0;) {
      if (fds[i].revents == 0) continue;
      Worker& w = workers_[i];
      char chunk[65536];
      ssize_t n = ::read(w.fromChild, chunk, sizeof chunk);
      if (n < 0 && errno == EINTR) continue;
      if (n > 0) {
        w.pending.append(chunk, static_cast<std::size_t>(n));
        answer(w);
        continue;
      }
      // The worker is gone: on purpose when it had nothing left, else with its item.
      ::close(w.fromChild);
      if (w.toChild >= 0) ::close(w.toChild);
      std::string why = howItEnded(w.pid);
      std::optional<std::size_t> item = w.busy;
      workers_.erase(workers_.begin() + static_cast<std::ptrdiff_t>(i));
      if (item) {
        lost_(*item, why);
        start();
      }
    }
  }

  void answer(Worker& w) {
    std::size_t newline;
    while ((newline = w.pending.find('\n')) != std::string::npos) {
      std::string line = w.pending.substr(0, newline);
      w.pending.erase(0, newline + 1);
      if (!w.busy) continue;
      std::size_t item = *w.busy;
      std::error_code ec;
      json::value result = json::parse(line, ec);
      if (ec) result = json::object{{"error", "a worker answered in a way that is not JSON"}};
      give(w);
      done_(item, std::move(result));
    }
  }

  std::size_t count_, next_ = 0;
  const WorkerPool::Work& work_;
  const WorkerPool::Done& done_;
  const WorkerPool::Lost& lost_;
  std::vector<Worker> workers_;
};

}  // namespace

void WorkerPool::run(std::size_t count, int workers, const Work& work, const Done& done,
                     const Lost& lost) {
  if (count == 0) return;
  workers = static_cast<int>(std::clamp<std::size_t>(workers < 1 ? 1 : workers, 1, count));
  // A worker that dies leaves a closed pipe behind; writing to it must not end the parent.
  struct sigaction ignore {
  }, previous{};
  ignore.sa_handler = SIG_IGN;
  ::sigaction(SIGPIPE, &ignore, &previous);
  Pool(count, work, done, lost).run(workers);
  ::sigaction(SIGPIPE, &previous, nullptr);
}

}  // namespace zvpush

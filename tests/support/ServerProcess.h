// "zvpush COMMAND ARGS" (serve by default, or studio) as a child process that serves until it is
// stopped, through env(1) when given its arguments ("TMPDIR=/x", "-C FOLDER"): the shell execs it,
// keeping the pid it printed; the first line the server printed ("listening on URL"), its URL and
// its port.
#pragma once

#include <signal.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace zvtest {

class ServerProcess {
 public:
  explicit ServerProcess(const std::string& args, const std::string& command = "serve",
                         const std::string& environment = "") {
    std::string program =
        environment.empty() ? ZVPUSH_PATH : "env " + environment + " " ZVPUSH_PATH;
    out_ = popen(("echo $$; exec " + program + " " + command + " " + args).c_str(), "r");
    pid_ = std::stoi(line());
    firstLine = line();
    port = std::atoi(firstLine.c_str() + firstLine.rfind(':') + 1);
    url = "http://127.0.0.1:" + std::to_string(port);
  }
  ~ServerProcess() {
    if (out_) stop(SIGTERM);
  }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  // Sends a signal and returns the exit code.
  int stop(int signal) {
    kill(pid_, signal);
    int status = pclose(out_);
    out_ = nullptr;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string firstLine;
  int port = 0;
  std::string url;

 private:
  std::string line() {
    char buffer[256] = {};
    return std::fgets(buffer, sizeof buffer, out_) ? buffer : "";
  }
  std::FILE* out_;
  pid_t pid_;
};

}  // namespace zvtest

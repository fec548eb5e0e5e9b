// Helpers shared by the tests: a temporary folder removed at the end of the test, a capture of the
// log sink and of the system log, and a reset of the process-wide platform object.
#pragma once

#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace zvtest {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// Captures every message of the log sink and of the system log while it lives.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  std::vector<std::string> sink() const;
  std::vector<std::string> system() const;
  bool sinkContains(const std::string& message) const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> sink_;
  std::vector<std::string> system_;
};

// The outcome of running the zvpush program.
struct CommandOutcome {
  int exit = -1;
  std::string out;
};
// Runs "zvpush <args>" through the shell; stderr goes to /dev/null unless args redirect it.
CommandOutcome runZvpush(const std::string& args);
// Runs a shell command line the same way.
CommandOutcome runShell(std::string command);

// Reads a whole file.
std::string readFile(const std::filesystem::path& p);

}  // namespace zvtest

#include "support/TestSupport.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "platform/foundation/Log.h"

namespace zvtest {

TempDir::TempDir() {
  std::string tmpl = (std::filesystem::temp_directory_path() / "zvtest.XXXXXX").string();
  if (!mkdtemp(tmpl.data())) throw std::runtime_error("mkdtemp failed");
  path_ = tmpl;
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, ec);
  std::filesystem::remove_all(path_, ec);
}

LogCapture::LogCapture() {
  zv::log::setSinkReceiver([this](const std::string& m) {
    std::lock_guard lock(mutex_);
    sink_.push_back(m);
  });
  zv::log::setSystemReceiver([this](const std::string& m) {
    std::lock_guard lock(mutex_);
    system_.push_back(m);
  });
}

LogCapture::~LogCapture() {
  zv::log::setSinkReceiver({});
  zv::log::setSystemReceiver({});
}

std::vector<std::string> LogCapture::sink() const {
  std::lock_guard lock(mutex_);
  return sink_;
}

std::vector<std::string> LogCapture::system() const {
  std::lock_guard lock(mutex_);
  return system_;
}

bool LogCapture::sinkContains(const std::string& message) const {
  std::lock_guard lock(mutex_);
  return std::find(sink_.begin(), sink_.end(), message) != sink_.end();
}

CommandOutcome runZvpush(const std::string& args) {
  return runShell(std::string(ZVPUSH_PATH) + " " + args);
}

CommandOutcome runShell(std::string command) {
  if (command.find("2>") == std::string::npos) command += " 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  CommandOutcome outcome;
  if (!pipe) return outcome;
  char buffer[4096];
  while (size_t n = fread(buffer, 1, sizeof buffer, pipe)) outcome.out.append(buffer, n);
  int status = pclose(pipe);
  outcome.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

std::string readFile(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

}  // namespace zvtest

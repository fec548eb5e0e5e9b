// A zvpush subcommand. Each command file registers itself, so that adding a command touches no
// other file:
//   ZVPUSH_COMMAND("name", "summary", "usage", runFunction, "options explained");
// A command returns the process exit code: 0 success, 2 usage error or unreadable input (after
// printing one line on stderr).
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zvpush {

using Args = std::vector<std::string>;

struct Command {
  std::string name;
  std::string summary;  // one line for --help
  std::string usage;    // the synopsis after "zvpush "
  std::function<int(const Args& args)> run;
  std::string help;  // every option: what it does and its default (zvpush help CMD)
};

std::map<std::string, Command>& commands();

struct Registrar {
  explicit Registrar(Command c);
};

// Exit codes.
constexpr int kOk = 0;
constexpr int kFailure = 1;
constexpr int kUsage = 2;

// Prints "zvpush: <message>" on stderr and returns kUsage.
int usageError(const std::string& message);

// The libraries this program runs on, for --version: the service side's in zvpush, the content
// side's too in zvpush-content.
std::vector<std::pair<std::string, std::string>> libraryVersions();

}  // namespace zvpush

#define ZVPUSH_CONCAT2(a, b) a##b
#define ZVPUSH_CONCAT(a, b) ZVPUSH_CONCAT2(a, b)
#define ZVPUSH_COMMAND(...)                                   \
  static ::zvpush::Registrar ZVPUSH_CONCAT(zvpush_registrar_, \
                                           __LINE__)(::zvpush::Command{__VA_ARGS__})

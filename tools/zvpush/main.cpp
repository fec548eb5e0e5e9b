// zvpush: runs the Zentrova notification extensions on this machine. See --help.
#include <cstdio>
#include <iostream>

#include "ArgParser.h"
#include "Command.h"

namespace zvpush {

std::map<std::string, Command>& commands() {
  static std::map<std::string, Command> table;
  return table;
}

Registrar::Registrar(Command c) {
  std::string name = c.name;
  commands().emplace(std::move(name), std::move(c));
}

int usageError(const std::string& message) {
  std::fprintf(stderr, "zvpush: %s\n", message.c_str());
  return kUsage;
}

namespace {

void printHelp() {
  std::cout << "zvpush " ZV_VERSION
               ": run the Zentrova rich-notification extensions on this machine.\n\n"
               "Usage:\n";
  for (const auto& [name, c] : commands()) std::cout << "  zvpush " << c.usage << "\n";
  std::cout << "\nCommands:\n";
  for (const auto& [name, c] : commands()) {
    std::cout << "  " << name << std::string(name.size() < 10 ? 10 - name.size() : 1, ' ')
              << c.summary << "\n";
  }
  std::cout << "\nOptions:\n  --help     this text\n  --version  the version\n";
}

}  // namespace

}  // namespace zvpush

int main(int argc, char** argv) {
  using namespace zvpush;
  Args args(argv + 1, argv + argc);
  if (args.empty()) {
    printHelp();
    return kUsage;
  }
  if (args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
    printHelp();
    return kOk;
  }
  if (args[0] == "--version") {
    std::cout << "zvpush " ZV_VERSION "\n";
    return kOk;
  }
  auto it = commands().find(args[0]);
  if (it == commands().end()) return usageError("unknown command '" + args[0] + "' (see --help)");
  Args rest(args.begin() + 1, args.end());
  try {
    return it->second.run(rest);
  } catch (const UsageError& e) {
    return usageError(e.what() + std::string(" (usage: zvpush ") + it->second.usage + ")");
  }
}

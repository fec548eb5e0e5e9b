// zvpush: runs the Zentrova notification extensions on this machine. See --help.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/CommandDoc.h"
#include "common/JsonIO.h"
#include "common/ShellFiles.h"
#include "zentrova/Version.h"

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

void printHelp(std::ostream& out) {
  out << "zvpush " ZENTROVA_VERSION_STRING
         ": run the Zentrova rich-notification extensions on this machine.\n\n"
         "Usage:\n";
  for (const auto& [name, c] : commands()) out << "  zvpush " << c.usage << "\n";
  out << "\nCommands:\n";
  for (const auto& [name, c] : commands()) {
    out << "  " << name << std::string(name.size() < 10 ? 10 - name.size() : 1, ' ') << c.summary
        << "\n";
  }
  out << "\nOptions of every command:\n";
  for (const auto& o : commonOptions()) {
    out << "  " << o.name << std::string(11 - o.name.size(), ' ') << o.description << "\n";
  }
  out << "  --version  the version\n";
}

void printCommandHelp(const Command& c) {
  std::cout << "zvpush " << c.usage << "\n\n" << c.summary << ".\n";
  if (!c.help.empty()) std::cout << "\n" << c.help;
  std::cout << "\n  --compact  " << commonOptions().front().description << "\n";
}

// Standard output that could not be written (a full disk, a closed pipe) is an error.
int finish(int code) {
  std::cout.flush();
  if (!std::cout || std::fflush(stdout) != 0 || std::ferror(stdout)) {
    std::fprintf(stderr, "zvpush: cannot write the output: %s\n",
                 std::strerror(errno ? errno : EIO));
    return kFailure;
  }
  return code;
}

}  // namespace

}  // namespace zvpush

int main(int argc, char** argv) {
  using namespace zvpush;
  Args args(argv + 1, argv + argc);
  if (args.empty()) {
    printHelp(std::cerr);
    return kUsage;
  }
  if (args[0] == "--help" || args[0] == "-h" || (args[0] == "help" && args.size() == 1)) {
    printHelp(std::cout);
    return finish(kOk);
  }
  if (args[0] == "--version") {
    std::cout << "zvpush " ZENTROVA_VERSION_STRING "\n";
    for (const auto& [name, version] : libraryVersions()) {
      std::cout << "  " << name << " " << version << "\n";
    }
    return finish(kOk);
  }
  // Hidden: the completions and manual pages, made from the table above at build time.
  if (args[0] == "--shell-files" && args.size() == 2) {
    std::vector<CommandDoc> docs;
    for (const auto& [name, c] : commands()) docs.push_back(CommandDoc::of(c));
    return ShellFiles(std::move(docs)).write(args[1]) ? kOk : kFailure;
  }
  if (args[0] == "help") {
    auto it = commands().find(args[1]);
    if (it == commands().end()) return usageError("unknown command '" + args[1] + "' (see --help)");
    printCommandHelp(it->second);
    return finish(kOk);
  }
  auto it = commands().find(args[0]);
  if (it == commands().end()) return usageError("unknown command '" + args[0] + "' (see --help)");
  // The options every command takes, up to a "--".
  Args rest;
  bool operands = false;
  for (auto a = args.begin() + 1; a != args.end(); ++a) {
    operands = operands || *a == "--";
    if (!operands && (*a == "--help" || *a == "-h")) {
      printCommandHelp(it->second);
      return finish(kOk);
    }
    if (!operands && *a == "--compact") {
      setCompact(true);
      continue;
    }
    rest.push_back(*a);
  }
  try {
    return finish(it->second.run(rest));
  } catch (const InputError& e) {
    return usageError(e.what());
  } catch (const UsageError& e) {
    return usageError(e.what() + std::string(" (see zvpush ") + it->first + " --help)");
  }
}

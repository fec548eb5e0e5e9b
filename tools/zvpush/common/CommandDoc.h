// A command of the table that --help prints, read for the shell completions and manual pages made
// from it: its options (from the help's lines, then the usage), whether each takes a value and of
// what kind, its operands, and the help's lines as written. The help is written in one shape:
//   "  --opt VALUE    what it does" (value placeholders in capitals: N, DIR, OUT.png, X,Y),
//   deeper-indented lines continuing the one above, unindented lines for notes.
#pragma once

#include <string>
#include <vector>

#include "common/Command.h"

namespace zvpush {

// What a value or an operand names: a folder, a file, or anything else (a number, an identifier).
enum class ValueKind { kNone, kDirectory, kFile };

struct OptionDoc {
  std::string name;         // "--port", "-o"
  std::string value;        // its placeholder ("N"), empty for a flag
  std::string description;  // the help's first line for it (may be empty)
  ValueKind kind() const;
};

struct CommandDoc {
  struct Item {
    std::string head;         // "--store DIR --app-group ID", "PAYLOAD.json", "get KEY"
    std::string description;  // with its continuation lines joined
  };

  std::string name;
  std::string summary;
  std::string usage;
  std::vector<OptionDoc> options;     // its own, then those of every command
  std::vector<std::string> literals;  // operand words of the usage ("dump", "get")
  ValueKind operands = ValueKind::kNone;
  std::vector<Item> items;
  std::vector<std::string> notes;

  static CommandDoc of(const Command& command);
};

// The options every command takes (--compact, --help).
const std::vector<OptionDoc>& commonOptions();

ValueKind kindOf(const std::string& placeholder);

}  // namespace zvpush

// A small option parser for zvpush commands: "--name value" or "--name=value", "--flag", short
// options the command declares ("-o FILE"), and operands; "--" ends the options and "-" alone is an
// operand (stdin). Unknown options, long or short, and missing values are usage errors with a
// one-line message.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace zvpush {

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An input that cannot be used (a file that cannot be read, text that is not JSON): exit 2 with
// the reason alone, without the command's usage.
class InputError : public UsageError {
 public:
  using UsageError::UsageError;
};

class ArgParser {
 public:
  // valueOptions take a value ("--store DIR"); flags take none ("--log").
  ArgParser(std::set<std::string> valueOptions, std::set<std::string> flags);

  // Throws UsageError on an unknown option or a missing value.
  void parse(const std::vector<std::string>& args);

  const std::vector<std::string>& positional() const { return positional_; }
  std::optional<std::string> value(const std::string& name) const;
  bool flag(const std::string& name) const { return flagsSet_.count(name) > 0; }
  // The value parsed as a number; throws UsageError when it is not one.
  std::optional<double> number(const std::string& name) const;

 private:
  std::set<std::string> valueOptions_;
  std::set<std::string> flags_;
  std::map<std::string, std::string> values_;
  std::set<std::string> flagsSet_;
  std::vector<std::string> positional_;
};

}  // namespace zvpush

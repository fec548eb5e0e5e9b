#include "common/ArgParser.h"

#include <cstdlib>

namespace zvpush {

ArgParser::ArgParser(std::set<std::string> valueOptions, std::set<std::string> flags)
    : valueOptions_(std::move(valueOptions)), flags_(std::move(flags)) {}

void ArgParser::parse(const std::vector<std::string>& args) {
  bool optionsEnded = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (optionsEnded || a == "-" || a.size() < 2 || a[0] != '-') {
      positional_.push_back(a);
      continue;
    }
    if (a == "--") {  // everything after is an operand, even when it starts with "-"
      optionsEnded = true;
      continue;
    }
    // "--name=value" gives a value option its value in the same word.
    std::string name = a;
    std::optional<std::string> inlineValue;
    if (auto eq = a.find('='); a.rfind("--", 0) == 0 && eq != std::string::npos) {
      name = a.substr(0, eq);
      inlineValue = a.substr(eq + 1);
    }
    if (flags_.count(name)) {
      if (inlineValue) throw UsageError("option " + name + " takes no value");
      flagsSet_.insert(name);
    } else if (valueOptions_.count(name)) {
      if (inlineValue) {
        values_[name] = *inlineValue;
      } else if (i + 1 < args.size()) {
        values_[name] = args[++i];
      } else {
        throw UsageError("option " + name + " needs a value");
      }
    } else {
      throw UsageError("unknown option " + name);
    }
  }
}

std::optional<std::string> ArgParser::value(const std::string& name) const {
  auto it = values_.find(name);
  if (it == values_.end()) return std::nullopt;
  return it->second;
}

std::optional<double> ArgParser::number(const std::string& name) const {
  auto v = value(name);
  if (!v) return std::nullopt;
  char* end = nullptr;
  double d = std::strtod(v->c_str(), &end);
  if (v->empty() || *end != '\0') throw UsageError("option " + name + " needs a number");
  return d;
}

}  // namespace zvpush

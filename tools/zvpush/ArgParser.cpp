#include "ArgParser.h"

#include <cstdlib>

namespace zvpush {

ArgParser::ArgParser(std::set<std::string> valueOptions, std::set<std::string> flags)
    : valueOptions_(std::move(valueOptions)), flags_(std::move(flags)) {}

void ArgParser::parse(const std::vector<std::string>& args) {
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a.size() > 2 && a.rfind("--", 0) == 0) {
      if (flags_.count(a)) {
        flagsSet_.insert(a);
      } else if (valueOptions_.count(a)) {
        if (i + 1 >= args.size()) throw UsageError("option " + a + " needs a value");
        values_[a] = args[++i];
      } else {
        throw UsageError("unknown option " + a);
      }
    } else if (a == "-o" && valueOptions_.count("-o")) {
      if (i + 1 >= args.size()) throw UsageError("option -o needs a value");
      values_[a] = args[++i];
    } else {
      positional_.push_back(a);
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

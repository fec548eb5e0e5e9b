#include "common/CommandDoc.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace zvpush {

namespace {

bool isOption(const std::string& token) { return token.size() > 1 && token[0] == '-'; }

// "N", "DIR", "X,Y", "PAYLOAD.json", "OUT.webp": capitals up to the extension.
bool isPlaceholder(const std::string& token) {
  std::string stem = token.substr(0, token.find('.'));
  return !stem.empty() &&
         std::none_of(stem.begin(), stem.end(), [](unsigned char c) { return std::islower(c); }) &&
         std::any_of(stem.begin(), stem.end(), [](unsigned char c) { return std::isalnum(c); });
}

std::vector<std::string> words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> out;
  for (std::string w; in >> w;) out.push_back(w);
  return out;
}

std::string trim(const std::string& text) {
  auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

OptionDoc* find(std::vector<OptionDoc>& options, const std::string& name) {
  auto it = std::find_if(options.begin(), options.end(),
                         [&](const OptionDoc& o) { return o.name == name; });
  return it == options.end() ? nullptr : &*it;
}

// One line of the help: "  HEAD  DESCRIPTION", the head ending at two spaces or, without them, at
// the first word that is neither an option nor a placeholder.
CommandDoc::Item splitItem(const std::string& text) {
  if (auto gap = text.find("  "); gap != std::string::npos) {
    return {text.substr(0, gap), trim(text.substr(gap))};
  }
  auto tokens = words(text);
  std::size_t n = 0;
  while (n < tokens.size() && (isOption(tokens[n]) || isPlaceholder(tokens[n]))) ++n;
  std::string head, rest;
  for (std::size_t i = 0; i < tokens.size(); ++i) (i < n ? head : rest) += tokens[i] + " ";
  return {trim(head), trim(rest)};
}

}  // namespace

ValueKind kindOf(const std::string& placeholder) {
  if (placeholder.find("DIR") != std::string::npos) return ValueKind::kDirectory;
  for (const char* file : {"FILE", "PEM", "PAYLOAD", "INPUT", "OUT", "."}) {
    if (placeholder.find(file) != std::string::npos) return ValueKind::kFile;
  }
  return ValueKind::kNone;
}

ValueKind OptionDoc::kind() const { return value.empty() ? ValueKind::kNone : kindOf(value); }

const std::vector<OptionDoc>& commonOptions() {
  static const std::vector<OptionDoc> options = {
      {"--compact", "", "print JSON on one line"},
      {"--help", "", "what a command does and every option it takes (also: zvpush help CMD)"},
  };
  return options;
}

CommandDoc CommandDoc::of(const Command& command) {
  CommandDoc doc{command.name, command.summary, command.usage, {}, {}, ValueKind::kNone, {}, {}};
  // The help's lines.
  std::istringstream help(command.help);
  for (std::string line; std::getline(help, line);) {
    if (line.starts_with("   ") && !doc.items.empty()) {
      doc.items.back().description += " " + trim(line);
    } else if (line.starts_with("  ")) {
      doc.items.push_back(splitItem(line.substr(2)));
    } else if (!trim(line).empty()) {
      doc.notes.push_back(line);
    }
  }
  for (const auto& item : doc.items) {
    auto tokens = words(item.head);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      if (!isOption(tokens[i]) || find(doc.options, tokens[i])) continue;
      bool valued = i + 1 < tokens.size() && !isOption(tokens[i + 1]);
      std::string first = item.description.substr(0, item.description.find(". "));
      doc.options.push_back({tokens[i], valued ? tokens[i + 1] : "", first});
    }
  }
  // The usage: options the help did not explain, and the operands.
  std::string usage = command.usage.substr(command.name.size());
  for (char& c : usage) {
    if (c == '[' || c == ']' || c == '(' || c == ')' || c == '|') c = ' ';
  }
  // A value follows its option within one bracket; the separators above became spaces, so the
  // value is taken only when the help does not say the option is a flag.
  auto tokens = words(usage);
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const std::string& t = tokens[i];
    if (isOption(t)) {
      bool valued = i + 1 < tokens.size() && !isOption(tokens[i + 1]) && tokens[i + 1] != "-";
      OptionDoc* known = find(doc.options, t);
      if (!known) doc.options.push_back({t, valued ? tokens[i + 1] : "", ""});
      if (valued && (!known || !known->value.empty())) ++i;
    } else if (t == "-") {
      continue;
    } else if (isPlaceholder(t)) {
      if (kindOf(t) != ValueKind::kNone) doc.operands = kindOf(t);
    } else if (std::find(doc.literals.begin(), doc.literals.end(), t) == doc.literals.end()) {
      doc.literals.push_back(t);
    }
  }
  for (const auto& o : commonOptions()) doc.options.push_back(o);
  return doc;
}

}  // namespace zvpush

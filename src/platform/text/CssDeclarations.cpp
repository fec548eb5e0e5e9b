#include "platform/text/CssDeclarations.h"

#include "platform/text/CssText.h"

namespace zv::css {

std::string stripComments(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  char quote = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (quote) {
      if (c == '\\' && i + 1 < text.size()) {
        out += c;
        out += text[++i];
        continue;
      }
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '/' && i + 1 < text.size() && text[i + 1] == '*') {
      size_t end = text.find("*/", i + 2);
      i = end == std::string_view::npos ? text.size() : end + 1;
      out += ' ';
      continue;
    }
    out += c;
  }
  return out;
}

namespace {

void addDeclaration(std::string_view text, std::vector<Declaration>& out) {
  size_t colon = text.find(':');
  if (colon == std::string_view::npos) return;
  std::string_view property = trim(text.substr(0, colon));
  std::string_view value = trim(text.substr(colon + 1));
  if (property.empty()) return;
  bool important = false;
  size_t bang = value.rfind('!');
  if (bang != std::string_view::npos &&
      equalsIgnoreCase(trim(value.substr(bang + 1)), "important")) {
    important = true;
    value = trim(value.substr(0, bang));
  }
  if (value.empty()) return;
  out.push_back(Declaration{toLower(property), std::string(value), important});
}

}  // namespace

std::vector<Declaration> parseDeclarations(std::string_view block) {
  std::vector<Declaration> out;
  std::string clean;
  if (block.find("/*") != std::string_view::npos) {
    clean = stripComments(block);
    block = clean;
  }
  char quote = 0;
  int depth = 0;
  size_t start = 0;
  for (size_t i = 0; i <= block.size(); ++i) {
    char c = i < block.size() ? block[i] : ';';
    if (quote) {
      if (c == '\\') {
        ++i;
      } else if (c == quote) {
        quote = 0;
      }
      continue;
    }
    if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '(') {
      ++depth;
    } else if (c == ')' && depth > 0) {
      --depth;
    } else if (c == ';' && depth == 0) {
      addDeclaration(block.substr(start, i - start), out);
      start = i + 1;
    }
  }
  // An unclosed quote or parenthesis swallows the rest: what was read before it stands.
  if (start < block.size() && (quote || depth > 0)) addDeclaration(block.substr(start), out);
  return out;
}

}  // namespace zv::css

#include "platform/text/CssStyleSheet.h"

#include <algorithm>
#include <string>

#include "platform/text/CssText.h"

namespace zv::css {

namespace {

// The position of the first of stops at depth 0 outside quotes, from pos; npos when none.
size_t findTopLevel(std::string_view s, size_t pos, std::string_view stops) {
  char quote = 0;
  int depth = 0;
  for (; pos < s.size(); ++pos) {
    char c = s[pos];
    if (quote) {
      if (c == '\\') {
        ++pos;
      } else if (c == quote) {
        quote = 0;
      }
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '(' || c == '[') {
      ++depth;
    } else if ((c == ')' || c == ']') && depth > 0) {
      --depth;
    } else if (depth == 0 && stops.find(c) != std::string_view::npos) {
      return pos;
    }
  }
  return std::string_view::npos;
}

// The position of the '}' that closes the block opened at s[open] == '{' (s.size() when the
// block runs to the end unclosed, as a browser closes it).
size_t blockClose(std::string_view s, size_t open) {
  int depth = 0;
  for (size_t pos = open; pos < s.size();) {
    size_t next = findTopLevel(s, pos, "{}");
    if (next == std::string_view::npos) return s.size();
    depth += s[next] == '{' ? 1 : -1;
    if (depth == 0) return next;
    pos = next + 1;
  }
  return s.size();
}

}  // namespace

bool StyleSheet::mediaApplies(std::string_view prelude) {
  std::string q = toLower(trim(prelude));
  if (q.empty()) return true;
  size_t start = 0;
  while (start <= q.size()) {
    size_t comma = q.find(',', start);
    std::string_view one = trim(std::string_view(q).substr(
        start, comma == std::string::npos ? std::string::npos : comma - start));
    if (one.find('(') == std::string_view::npos) {
      bool negate = one.substr(0, 4) == "not ";
      if (negate) one = trim(one.substr(4));
      if (one.substr(0, 5) == "only ") one = trim(one.substr(5));
      bool matches = one == "all" || one == "screen";
      if (matches != negate) return true;
    }
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return false;
}

void StyleSheet::add(std::string_view text) {
  if (text.find("/*") != std::string_view::npos) {
    std::string clean = stripComments(text);
    parseRules(clean);
  } else {
    parseRules(text);
  }
}

void StyleSheet::parseRules(std::string_view s) {
  size_t pos = 0;
  while (pos < s.size()) {
    while (pos < s.size() && (isSpace(s[pos]) || s[pos] == '}')) ++pos;
    if (s.substr(pos, 4) == "<!--") {
      pos += 4;
      continue;
    }
    if (s.substr(pos, 3) == "-->") {
      pos += 3;
      continue;
    }
    if (pos >= s.size()) break;
    size_t stop = findTopLevel(s, pos, s[pos] == '@' ? "{;" : "{");
    if (stop == std::string_view::npos) break;
    std::string_view prelude = s.substr(pos, stop - pos);
    if (s[stop] == ';') {  // @import, @charset, ...
      pos = stop + 1;
      continue;
    }
    size_t close = blockClose(s, stop);
    std::string_view body = s.substr(stop + 1, close - stop - 1);
    pos = close + 1;
    if (prelude[0] == '@') {
      std::string keyword = toLower(prelude.substr(0, prelude.find_first_of(" \t\n\r\f(")));
      if (keyword == "@media" && mediaApplies(prelude.substr(keyword.size()))) parseRules(body);
      continue;
    }
    std::vector<Selector> selectors;
    bool valid = true;
    size_t from = 0;
    while (valid) {
      size_t comma = findTopLevel(prelude, from, ",");
      auto sel = Selector::parse(prelude.substr(
          from, comma == std::string_view::npos ? std::string_view::npos : comma - from));
      if (!sel) valid = false;
      if (sel) selectors.push_back(std::move(*sel));
      if (comma == std::string_view::npos) break;
      from = comma + 1;
    }
    if (!valid) continue;  // one bad selector drops the whole rule
    auto declarations = std::make_shared<const std::vector<Declaration>>(parseDeclarations(body));
    if (declarations->empty()) continue;
    for (auto& sel : selectors) rules_.push_back(Rule{std::move(sel), declarations});
  }
}

void StyleSheet::match(const GumboNode* element, bool quirks,
                       std::vector<const Declaration*>& normal,
                       std::vector<const Declaration*>& important) const {
  // Matching rules in source order, then a stable sort by selector rank gives the cascade order.
  std::vector<const Rule*> matched;
  for (const Rule& r : rules_) {
    if (r.selector.matches(element, quirks)) matched.push_back(&r);
  }
  std::stable_sort(matched.begin(), matched.end(), [](const Rule* a, const Rule* b) {
    return a->selector.rank() < b->selector.rank();
  });
  for (const Rule* r : matched) {
    for (const Declaration& d : *r->declarations) (d.important ? important : normal).push_back(&d);
  }
}

}  // namespace zv::css

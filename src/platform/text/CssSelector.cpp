#include "platform/text/CssSelector.h"

#include "platform/text/CssText.h"
#include "platform/text/HtmlDocument.h"

namespace zv::css {

namespace {

bool isNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '_' || static_cast<unsigned char>(c) >= 0x80 || c == '\\';
}

// Reads a name (identifier) at pos; backslash escapes keep the escaped character.
std::string readName(std::string_view s, size_t& pos) {
  std::string out;
  while (pos < s.size() && isNameChar(s[pos])) {
    if (s[pos] == '\\') {
      if (pos + 1 >= s.size()) break;
      out += s[pos + 1];
      pos += 2;
    } else {
      out += s[pos++];
    }
  }
  return out;
}

// Skips a parenthesised argument list starting at s[pos] == '('; false when unbalanced.
bool skipParentheses(std::string_view s, size_t& pos) {
  int depth = 0;
  for (; pos < s.size(); ++pos) {
    if (s[pos] == '(') ++depth;
    if (s[pos] == ')' && --depth == 0) {
      ++pos;
      return true;
    }
  }
  return false;
}

bool hasToken(std::string_view list, std::string_view token, bool ignoreCase) {
  size_t i = 0;
  while (i < list.size()) {
    while (i < list.size() && isSpace(list[i])) ++i;
    size_t start = i;
    while (i < list.size() && !isSpace(list[i])) ++i;
    std::string_view t = list.substr(start, i - start);
    if (!t.empty() && (ignoreCase ? equalsIgnoreCase(t, token) : t == token)) return true;
  }
  return false;
}

bool startsWith(std::string_view s, std::string_view p) { return s.substr(0, p.size()) == p; }

// An unquoted attribute value must be a CSS identifier: no digit first (nor after a leading "-").
bool isIdentifier(std::string_view s) {
  if (s.empty()) return false;
  size_t first = s[0] == '-' && s.size() > 1 ? 1 : 0;
  if (s[first] >= '0' && s[first] <= '9') return false;
  for (char c : s) {
    if (!isNameChar(c)) return false;
  }
  return true;
}

}  // namespace

std::optional<Selector> Selector::parse(std::string_view text) {
  std::string_view s = trim(text);
  if (s.empty()) return std::nullopt;
  Selector sel;
  Compound cur;
  size_t parts = 0;  // components in the current compound
  char combinator = 0;
  unsigned ids = 0, classes = 0, types = 0;
  size_t pos = 0;
  while (pos < s.size()) {
    char c = s[pos];
    if (isSpace(c)) {
      while (pos < s.size() && isSpace(s[pos])) ++pos;
      if (pos < s.size() && s[pos] != '>' && s[pos] != '+' && s[pos] != '~' && parts > 0 &&
          combinator == 0) {
        combinator = ' ';
      }
      continue;
    }
    if (c == '>' || c == '+' || c == '~') {
      if (parts == 0 || (combinator != 0 && combinator != ' ')) return std::nullopt;
      combinator = c;
      ++pos;
      continue;
    }
    if (combinator != 0) {
      sel.compounds_.push_back(std::move(cur));
      sel.combinators_.push_back(combinator);
      cur = Compound();
      parts = 0;
      combinator = 0;
    }
    if (c == '*' || (isNameChar(c) && c != '\\' && !(c >= '0' && c <= '9'))) {
      if (parts > 0) return std::nullopt;  // a type comes first in its compound
      if (c == '*') {
        ++pos;
      } else {
        cur.tag = toLower(readName(s, pos));
        ++types;
      }
    } else if (c == '.' || c == '#') {
      ++pos;
      std::string name = readName(s, pos);
      if (name.empty()) return std::nullopt;
      (c == '.' ? cur.classes : cur.ids).push_back(std::move(name));
      ++(c == '.' ? classes : ids);
    } else if (c == '[') {
      size_t close = s.find(']', pos);
      if (close == std::string_view::npos) return std::nullopt;
      std::string_view inner = trim(s.substr(pos + 1, close - pos - 1));
      pos = close + 1;
      AttributeTest test;
      size_t op = inner.find_first_of("=~|^$*");
      test.name = toLower(trim(inner.substr(0, op)));
      if (test.name.empty()) return std::nullopt;
      if (op != std::string_view::npos) {
        size_t eq = inner.find('=', op);
        if (eq == std::string_view::npos || eq > op + 1) return std::nullopt;
        test.op = inner[op];
        std::string_view value = trim(inner.substr(eq + 1));
        if (value.size() >= 2 && (value.back() == 'i' || value.back() == 'I') &&
            isSpace(value[value.size() - 2])) {
          test.ignoreCase = true;
          value = trim(value.substr(0, value.size() - 1));
        }
        if (value.size() >= 2 && (value[0] == '"' || value[0] == '\'') &&
            value.back() == value[0]) {
          value = value.substr(1, value.size() - 2);
        } else if (!isIdentifier(value)) {
          return std::nullopt;  // neither a string nor a name: "[x=]", "[x=a b]"
        }
        test.value = std::string(value);
      }
      cur.attributes.push_back(std::move(test));
      ++classes;
    } else if (c == ':') {
      bool element = pos + 1 < s.size() && s[pos + 1] == ':';
      pos += element ? 2 : 1;
      std::string name = toLower(readName(s, pos));
      if (name.empty()) return std::nullopt;
      bool hasArguments = pos < s.size() && s[pos] == '(';
      if (hasArguments && !skipParentheses(s, pos)) return std::nullopt;
      bool supported =
          !element && !hasArguments &&
          (name == "root" || name == "first-child" || name == "last-child" ||
           name == "only-child" || name == "empty" || name == "link" || name == "any-link");
      if (supported) {
        cur.pseudoClasses.push_back(std::move(name));
      } else {
        cur.never = true;
      }
      ++(element || name == "before" || name == "after" || name == "first-line" ||
                 name == "first-letter"
             ? types
             : classes);
    } else {
      return std::nullopt;
    }
    ++parts;
  }
  if (parts == 0 || combinator != 0) return std::nullopt;
  sel.compounds_.push_back(std::move(cur));
  sel.rank_ =
      (std::min(ids, 1023u) << 20) | (std::min(classes, 1023u) << 10) | std::min(types, 1023u);
  return sel;
}

bool Selector::matchCompound(const Compound& c, const GumboNode* e, bool quirks) const {
  if (c.never) return false;
  if (!c.tag.empty() && HtmlDocument::tagName(e) != c.tag) return false;
  if (!c.ids.empty()) {
    const char* id = HtmlDocument::attribute(e, "id");
    if (!id) return false;
    for (const auto& want : c.ids) {
      if (quirks ? !equalsIgnoreCase(id, want) : want != id) return false;
    }
  }
  if (!c.classes.empty()) {
    const char* list = HtmlDocument::attribute(e, "class");
    if (!list) return false;
    for (const auto& want : c.classes) {
      if (!hasToken(list, want, quirks)) return false;
    }
  }
  for (const auto& t : c.attributes) {
    const char* v = HtmlDocument::attribute(e, t.name.c_str());
    if (!v) return false;
    std::string value = t.ignoreCase ? toLower(v) : std::string(v);
    std::string want = t.ignoreCase ? toLower(t.value) : t.value;
    std::string_view sv = value;
    bool ok = true;
    switch (t.op) {
      case '=':
        ok = sv == want;
        break;
      case '~':
        ok = hasToken(sv, want, false);
        break;
      case '|':
        ok = sv == want || startsWith(sv, want + "-");
        break;
      case '^':
        ok = !want.empty() && startsWith(sv, want);
        break;
      case '$':
        ok =
            !want.empty() && sv.size() >= want.size() && sv.substr(sv.size() - want.size()) == want;
        break;
      case '*':
        ok = !want.empty() && sv.find(want) != std::string_view::npos;
        break;
      default:
        break;
    }
    if (!ok) return false;
  }
  for (const auto& p : c.pseudoClasses) {
    if (p == "root") {
      if (!e->parent || e->parent->type != GUMBO_NODE_DOCUMENT) return false;
    } else if (p == "first-child") {
      if (HtmlDocument::previousElementSibling(e)) return false;
    } else if (p == "last-child") {
      if (HtmlDocument::nextElementSibling(e)) return false;
    } else if (p == "only-child") {
      if (HtmlDocument::previousElementSibling(e) || HtmlDocument::nextElementSibling(e)) {
        return false;
      }
    } else if (p == "empty") {
      const GumboVector& kids = HtmlDocument::children(e);
      for (unsigned i = 0; i < kids.length; ++i) {
        if (static_cast<const GumboNode*>(kids.data[i])->type != GUMBO_NODE_COMMENT) return false;
      }
    } else {  // link, any-link
      std::string_view tag = HtmlDocument::tagName(e);
      if ((tag != "a" && tag != "area") || !HtmlDocument::attribute(e, "href")) return false;
    }
  }
  return true;
}

bool Selector::matchFrom(size_t index, const GumboNode* e, bool quirks) const {
  if (!matchCompound(compounds_[index], e, quirks)) return false;
  if (index == 0) return true;
  switch (combinators_[index - 1]) {
    case '>': {
      const GumboNode* p = HtmlDocument::parentElement(e);
      return p && matchFrom(index - 1, p, quirks);
    }
    case '+': {
      const GumboNode* s = HtmlDocument::previousElementSibling(e);
      return s && matchFrom(index - 1, s, quirks);
    }
    case '~':
      for (auto* s = HtmlDocument::previousElementSibling(e); s;
           s = HtmlDocument::previousElementSibling(s)) {
        if (matchFrom(index - 1, s, quirks)) return true;
      }
      return false;
    default:
      for (auto* p = HtmlDocument::parentElement(e); p; p = HtmlDocument::parentElement(p)) {
        if (matchFrom(index - 1, p, quirks)) return true;
      }
      return false;
  }
}

bool Selector::matches(const GumboNode* element, bool quirks) const {
  return matchFrom(compounds_.size() - 1, element, quirks);
}

}  // namespace zv::css

#include "platform/text/CssText.h"

#include <charconv>
#include <cmath>

namespace zv::css {

std::string_view trim(std::string_view s) {
  while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
  while (!s.empty() && isSpace(s.back())) s.remove_suffix(1);
  return s;
}

std::string toLower(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x - 'A' + 'a');
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y - 'A' + 'a');
    if (x != y) return false;
  }
  return true;
}

std::optional<Number> parseNumber(std::string_view s) {
  s = trim(s);
  size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  size_t digits = 0;
  while (i < s.size() && s[i] >= '0' && s[i] <= '9') ++i, ++digits;
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') ++i, ++digits;
  }
  if (digits == 0) return std::nullopt;
  // An exponent only when digits follow it, so that "1em" keeps its unit.
  if (i + 1 < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
    if (j < s.size() && s[j] >= '0' && s[j] <= '9') {
      while (j < s.size() && s[j] >= '0' && s[j] <= '9') ++j;
      i = j;
    }
  }
  // from_chars takes no leading '+' and ignores the locale.
  size_t from = s[0] == '+' ? 1 : 0;
  double value = 0;
  auto [end, ec] = std::from_chars(s.data() + from, s.data() + i, value);
  if (ec != std::errc() || end != s.data() + i || !std::isfinite(value)) return std::nullopt;
  std::string unit = toLower(s.substr(i));
  for (char c : unit) {
    if (!((c >= 'a' && c <= 'z') || c == '%')) return std::nullopt;
  }
  return Number{value, unit};
}

}  // namespace zv::css

// Small text helpers for reading CSS and HTML attribute values: ASCII white space, trimming, ASCII
// case folding, and a number with its unit ("12px", "1.5em", "50%", "-3").
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zv::css {

inline bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

std::string_view trim(std::string_view s);
std::string toLower(std::string_view s);
bool equalsIgnoreCase(std::string_view a, std::string_view b);

struct Number {
  double value;
  std::string unit;  // lower-case: "", "px", "em", "%", ...
};
// A CSS number with an optional unit; nullopt when the text does not start with a number or has
// anything after its unit.
std::optional<Number> parseNumber(std::string_view s);

}  // namespace zv::css

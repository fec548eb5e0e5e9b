#include "model/ZVRichNotifUtils.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "platform/foundation/Clock.h"
#include "platform/foundation/Log.h"
#include "zentrova/Exception.h"

namespace zv {

namespace {

constexpr char kMandatoryParamsMissingReason[] = "Rich Push Payload Mandatory Params Missing";

Value nullToNil(Value v) { return v.isNull() ? Value() : v; }

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool isScannerSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The length in bytes of the UTF-8 character that starts with byte c (1 for a stray byte).
size_t utf8Length(unsigned char c) {
  if (c >= 0xF0) return 4;
  if (c >= 0xE0) return 3;
  if (c >= 0xC0) return 2;
  return 1;
}

// Scans an unsigned 32-bit hexadecimal number as the platform's scanner does: white space first,
// then an optional "0x"/"0X", then hexadecimal digits up to the first other character. Nothing
// scannable gives 0. More digits than fit saturate to 0xFFFFFFFF (the scanner's overflow rule), so
// an over-long colour such as "#1FF8800AA" comes out opaque white rather than as some arbitrary
// truncation of the digits.
std::uint32_t scanHexInt(std::string_view s) {
  size_t i = 0;
  while (i < s.size() && isScannerSpace(s[i])) ++i;
  if (i + 2 < s.size() && s[i] == '0' && (s[i + 1] == 'x' || s[i + 1] == 'X') &&
      hexDigit(s[i + 2]) >= 0) {
    i += 2;
  }
  std::uint64_t v = 0;
  for (; i < s.size(); ++i) {
    int d = hexDigit(s[i]);
    if (d < 0) break;
    v = v * 16 + static_cast<std::uint64_t>(d);
    if (v > 0xFFFFFFFFull) return 0xFFFFFFFFu;
  }
  return static_cast<std::uint32_t>(v);
}

}  // namespace

Value ZVRichNotifUtils::validObjectForKey(std::string_view key, const Value& dict) {
  if (dict.isNil()) return {};
  return nullToNil(dict.get(key));
}

Value ZVRichNotifUtils::validObjectForKeyPath(std::string_view keyPath, const Value& dict) {
  if (dict.isNil()) return {};
  // Walks nested dictionaries; a missing step ends the walk with nil, while a step that lands on
  // anything but a dictionary (null included) raises, as key-value coding does.
  Value current = dict;
  size_t start = 0;
  while (true) {
    size_t dot = keyPath.find('.', start);
    std::string_view step =
        keyPath.substr(start, dot == std::string_view::npos ? dot : dot - start);
    current = current.get(step);
    if (current.isNil()) return {};
    if (dot == std::string_view::npos) break;
    start = dot + 1;
  }
  return nullToNil(current);
}

void ZVRichNotifUtils::removeValidObjectForKey(std::string_view key, boost::json::object* dict) {
  if (dict != nullptr) dict->erase(key);
}

void ZVRichNotifUtils::raiseMandatoryParamsMissingException() {
  throw Exception(kMandatoryParamsMissingExceptionName, kMandatoryParamsMissingReason);
}

std::string ZVRichNotifUtils::getGMTtime(const Clock& clock) {
  double now = clock.now();
  return fmt::format("{}", static_cast<long long>(std::floor(now)));
}

std::string ZVRichNotifUtils::getLocalTime(const Clock& clock) {
  std::tm t = clock.localTime(clock.now());
  return fmt::format("{:02}:{:02}:{:04}:{:02}:{:02}:{:02}", t.tm_mday, t.tm_mon + 1,
                     t.tm_year + 1900, t.tm_hour, t.tm_min, t.tm_sec);
}

ColorRef ZVRichNotifUtils::getColorFromHexValue(const Value& hex) {
  if (hex.isNil()) return Color::clear();
  std::string_view text = hex.string();  // raises for anything but a string
  if (text.empty()) return Color::clear();
  // The first character (meant to be "#") is skipped whatever it is; a multi-byte character is
  // skipped whole.
  text.remove_prefix(std::min(text.size(), utf8Length(static_cast<unsigned char>(text[0]))));
  std::uint32_t v = scanHexInt(text);
  // The top byte of an eight-digit value is dropped: colours are always opaque.
  return Color::make(((v >> 16) & 0xFF) / 255.0, ((v >> 8) & 0xFF) / 255.0, (v & 0xFF) / 255.0,
                     1.0);
}

void ZVRichNotifUtils::logWithMessage(const std::string& message) { log::sink(message); }

}  // namespace zv

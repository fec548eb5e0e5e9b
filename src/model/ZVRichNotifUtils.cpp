#include "model/ZVRichNotifUtils.h"

#include <fmt/format.h>

#include <cmath>

#include "platform/foundation/Exception.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/Platform.h"

namespace zv {

namespace {

constexpr char kMandatoryParamsMissingName[] = "PAYLOAD_MANDATORY_PARAMS_MISSING_EXCEPTION";
constexpr char kMandatoryParamsMissingReason[] = "Rich Push Payload Mandatory Params Missing";

Value nullToNil(Value v) { return v.isNull() ? Value() : v; }

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
  throw Exception(kMandatoryParamsMissingName, kMandatoryParamsMissingReason);
}

std::string ZVRichNotifUtils::getGMTtime() {
  double now = Platform::shared().clock()->now();
  return fmt::format("{}", static_cast<long long>(std::floor(now)));
}

std::string ZVRichNotifUtils::getLocalTime() {
  auto clock = Platform::shared().clock();
  std::tm t = clock->localTime(clock->now());
  return fmt::format("{:02}:{:02}:{:04}:{:02}:{:02}:{:02}", t.tm_mday, t.tm_mon + 1,
                     t.tm_year + 1900, t.tm_hour, t.tm_min, t.tm_sec);
}

void ZVRichNotifUtils::logWithMessage(const std::string& message) { log::sink(message); }

}  // namespace zv

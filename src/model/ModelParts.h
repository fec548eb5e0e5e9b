// Small pieces shared by the model constructors: a list of model objects built from the array
// under a key (absent gives an empty list, never nil), and the background colour read from the
// key path style.bgColor (absent gives the clear colour).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/PayloadKeys.h"
#include "model/ZVRichNotifUtils.h"
#include "zentrova/Color.h"
#include "zentrova/Value.h"

namespace zv::model {

// Builds one T with T::initWithDictionary per element of the array under key. A value that is not
// an array raises zv::Exception, and so does an element that T cannot read.
template <class T>
std::vector<std::shared_ptr<T>> listForKey(std::string_view key, const Value& dict) {
  std::vector<std::shared_ptr<T>> out;
  Value list = ZVRichNotifUtils::validObjectForKey(key, dict);
  if (list.isNil()) return out;
  const auto& elements = list.array();
  out.reserve(elements.size());
  for (const auto& e : elements) {
    // Each element shares the payload's tree: no copy is made.
    out.push_back(
        T::initWithDictionary(Value(std::shared_ptr<const json::value>(list.shared(), &e))));
  }
  return out;
}

// The colour at style.bgColor of a card, widget or mode dictionary.
inline ColorRef backgroundColor(const Value& dict) {
  static const std::string keyPath = std::string(kPushPayloadKeyZovFeaturesRichPushStyle) + "." +
                                     kPushPayloadKeyZovFeaturesRichPushBGColor;
  return ZVRichNotifUtils::getColorFromHexValue(
      ZVRichNotifUtils::validObjectForKeyPath(keyPath, dict));
}

// Whether a value is the string s (exact, case-sensitive). A value of another kind is never equal:
// a number where a type name is expected reads as an unknown name.
inline bool isString(const Value& v, std::string_view s) { return v.isString() && v.string() == s; }

}  // namespace zv::model

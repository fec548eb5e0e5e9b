#include "payload/DeliveredContent.h"

#include <boost/json.hpp>

#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationSound.h"

namespace zvpush {

boost::json::value describeDelivered(const zv::UNNotificationContent& c,
                                     const std::string& identifier) {
  namespace json = boost::json;
  json::object out;
  out["identifier"] = identifier;
  out["title"] = c.title();
  out["subtitle"] = c.subtitle();
  out["body"] = c.body();
  zv::Value badge = c.badge();
  out["badge"] = badge.isNil() ? json::value(nullptr) : badge.json();
  auto sound = c.sound();
  if (!sound) {
    out["sound"] = nullptr;
  } else if (sound->isDefault()) {
    out["sound"] = "default";
  } else {
    out["sound"] = json::object{{"named", sound->name()}};
  }
  out["categoryIdentifier"] = c.categoryIdentifier();
  out["userInfo"] = c.userInfo().json();
  json::array attachments;
  for (const auto& a : c.attachments()) {
    attachments.push_back(
        json::object{{"identifier", a->identifier()}, {"url", a->URL().absoluteString()}});
  }
  out["attachments"] = std::move(attachments);
  return out;
}

}  // namespace zvpush

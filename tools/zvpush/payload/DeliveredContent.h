// The content a notification was delivered with, as JSON: what zvpush service prints and what
// zvpush preview and the studio read back ({"identifier", "title", "subtitle", "body", "badge",
// "sound", "categoryIdentifier", "userInfo", "attachments": [{"identifier", "url"}]}).
#pragma once

#include <boost/json/value.hpp>
#include <string>

namespace zv {
class UNNotificationContent;
}

namespace zvpush {

boost::json::value describeDelivered(const zv::UNNotificationContent& content,
                                     const std::string& identifier);

}  // namespace zvpush

// Payloads that several tests send: a Zentrova stylised push (title "Rich", body "Body") whose one
// card shows the image at imageUrl.
#pragma once

#include <boost/json/object.hpp>
#include <string>

namespace zvtest {

boost::json::object stylizedPush(const std::string& imageUrl);

}  // namespace zvtest

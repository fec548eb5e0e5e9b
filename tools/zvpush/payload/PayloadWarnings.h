// What a sender most likely did not mean, read from a payload before it is sent: each warning a
// {code, path, message} in a stable order (the payload's own order, checks in a fixed sequence).
// zvpush inspect prints them; --strict makes any of them an exit status of 1.
#pragma once

#include <boost/json/array.hpp>
#include <string>

#include "zentrova/Value.h"

namespace zvpush {

class PayloadWarnings {
 public:
  // rawSize: the payload as sent, compact JSON, in bytes.
  static boost::json::array check(const zv::Value& payload, std::size_t rawSize);
};

}  // namespace zvpush

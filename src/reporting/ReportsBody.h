// ReportsBody writes the body of a reports request: one compact JSON object holding
// "viewsCount" (the number of events), "viewsInfo" (the stored event records, unchanged),
// "query_params" and, when the store has them, "identifiers". The events are written straight
// from the stored tree, without copying them into a new document first.
#pragma once

#include <boost/json/object.hpp>
#include <optional>
#include <string>

#include "zentrova/Value.h"

namespace zv {

struct ReportsBody {
  // Raises zv::Exception when events is not an array, or when any value holds a number that JSON
  // cannot write (infinite or NaN), as the platform's JSON writer does.
  static std::string serialize(const Value& events, const boost::json::object& queryParams,
                               const std::optional<boost::json::object>& identifiers);
};

}  // namespace zv

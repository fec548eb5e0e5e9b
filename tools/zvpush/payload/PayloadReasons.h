// Why the service did what it did with a payload, in sentences a sender can act on: each reason a
// {path, message}, path a dotted key path into the payload ("" for the payload as a whole). It
// names the mandatory key whose absence dropped the rich push, the template that will show
// nothing, the media item left out and why, and the exception the service's guard caught. The
// library's own log stays untouched beside it; these are read from the payload and the plan.
#pragma once

#include <boost/json/array.hpp>

#include "service/ServicePlan.h"
#include "zentrova/Value.h"

namespace zvpush {

class PayloadReasons {
 public:
  static boost::json::array explain(const zv::Value& payload, const zv::ServicePlan& plan);
};

}  // namespace zvpush

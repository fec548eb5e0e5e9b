// A payload (any bytes) through the envelope, the rich model and the service plan, the steps that
// `zvpush inspect` and both request flows share. Only zv::Exception may come out of parsing; the
// plan itself never raises.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/Value.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zv::Value payload;
  try {
    payload = zv::Value::parse(zvfuzz::text(data, size));
  } catch (const zv::Exception&) {
    return 0;
  }
  if (!payload.isObject()) return 0;
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("fuzz", payload);
  auto plan = zv::ServicePlan::make(zv::ZVRichNotificationHandler::sharedHandler(), request, false);
  ZV_FUZZ_CHECK(plan.content != nullptr);
  if (plan.failure) (void)plan.guardMessage(zv::ServicePlan::Flow::kFull);
  return 0;
}

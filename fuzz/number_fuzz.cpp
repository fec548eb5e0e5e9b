// The exact number reader against strtod: a JSON number that is not an integer reads as the
// double that strtod gives for the same text.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "platform/foundation/ExactJson.h"
#include "zentrova/Exception.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text = zvfuzz::text(data, size);
  boost::json::value v;
  try {
    v = zv::ExactJson::parse(text);
  } catch (const zv::Exception&) {
    return 0;
  }
  if (!v.is_double()) return 0;
  double expected = std::strtod(text.c_str(), nullptr);
  ZV_FUZZ_CHECK(v.as_double() == expected || (std::isnan(expected) && std::isnan(v.as_double())));
  return 0;
}

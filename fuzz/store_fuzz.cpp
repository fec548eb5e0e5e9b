// A JSON value (any bytes) written to the SQLite store and read back: what is accepted reads back
// equal; what is refused leaves the earlier value.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "zentrova/Exception.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/Value.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zv::Value value;
  try {
    value = zv::Value::parse(zvfuzz::text(data, size));
  } catch (const zv::Exception&) {
    return 0;
  }
  static auto suite = zv::UserDefaults::initWithSuiteName("group.fuzz", zvfuzz::scratch());
  ZV_FUZZ_CHECK(suite && suite->setObject(zv::Value("earlier"), "k"));
  if (suite->setObject(value, "k")) {
    auto again = zv::UserDefaults::initWithSuiteName("group.fuzz", zvfuzz::scratch());
    ZV_FUZZ_CHECK(again->objectForKey("k") == value);
  } else {
    ZV_FUZZ_CHECK(suite->objectForKey("k") == zv::Value("earlier"));
  }
  return 0;
}

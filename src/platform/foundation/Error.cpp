#include "zentrova/Error.h"

#include <fmt/format.h>

namespace zv {

std::string Error::description() const {
  return fmt::format("Error Domain={} Code={} \"{}\"", domain, code, localizedDescription);
}

}  // namespace zv

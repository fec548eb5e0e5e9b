#include "zentrova/Color.h"

namespace zv {

std::shared_ptr<const Color> Color::make(double r, double g, double b, double a) {
  return std::make_shared<const Color>(Color{r, g, b, a});
}

const std::shared_ptr<const Color>& Color::clear() {
  static const std::shared_ptr<const Color> c = make(0, 0, 0, 0);
  return c;
}

}  // namespace zv

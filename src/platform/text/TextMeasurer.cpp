#include "platform/text/TextMeasurer.h"

#include "platform/foundation/Platform.h"

namespace zv {

std::shared_ptr<TextMeasurer> Platform::textMeasurer() {
  std::lock_guard lock(mutex_);
  return textMeasurer_;
}

void Platform::setTextMeasurer(std::shared_ptr<TextMeasurer> measurer) {
  std::lock_guard lock(mutex_);
  textMeasurer_ = std::move(measurer);
}

}  // namespace zv

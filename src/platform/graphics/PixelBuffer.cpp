#include "platform/graphics/PixelBuffer.h"

#include <new>

namespace zv {

std::shared_ptr<PixelBuffer> PixelBuffer::make(std::size_t width, std::size_t height) {
  if (!withinBudget(width, height)) return nullptr;
  try {
    auto buffer = std::make_shared<PixelBuffer>();
    buffer->width = static_cast<int>(width);
    buffer->height = static_cast<int>(height);
    buffer->data.assign(width * height, 0);
    return buffer;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace zv

#include "platform/graphics/PngWriter.h"

#include <cairo.h>

#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/PixelBuffer.h"

namespace zv {

bool PngWriter::write(const PixelBuffer& pixels, const std::filesystem::path& file) {
  // Cairo only reads the pixels here, though its signature asks for a mutable pointer.
  auto* data = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels.data.data()));
  UniqueHandle<cairo_surface_t, cairo_surface_destroy> surface(cairo_image_surface_create_for_data(
      data, CAIRO_FORMAT_ARGB32, pixels.width, pixels.height, pixels.width * 4));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return false;
  return cairo_surface_write_to_png(surface.get(), file.c_str()) == CAIRO_STATUS_SUCCESS;
}

}  // namespace zv

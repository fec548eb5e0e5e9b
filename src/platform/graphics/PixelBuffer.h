// zv::PixelBuffer holds decoded pixels: premultiplied ARGB, one 32-bit word per pixel in native
// byte order (Cairo's CAIRO_FORMAT_ARGB32), rows packed without padding. Decoders refuse anything
// larger than the pixel budget below before they allocate, so a small file that claims a huge size
// (a 10 MB PNG can claim 100,000 x 100,000 pixels) costs nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zv {

struct PixelBuffer {
  // At most 4096 x 4096 pixels (64 MB decoded) per image or GIF canvas: more than any screen the
  // content extension draws on needs, and within what a notification extension may hold.
  static constexpr std::size_t kMaxPixels = 4096u * 4096u;

  static bool withinBudget(std::size_t width, std::size_t height) {
    return width > 0 && height > 0 && width <= kMaxPixels && height <= kMaxPixels &&
           width * height <= kMaxPixels;
  }
  // A buffer of transparent pixels; nullptr when the size is empty or over the budget.
  static std::shared_ptr<PixelBuffer> make(std::size_t width, std::size_t height);

  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> data;  // width * height words, row by row

  std::uint32_t* row(int y) { return data.data() + static_cast<std::size_t>(y) * width; }
  const std::uint32_t* row(int y) const {
    return data.data() + static_cast<std::size_t>(y) * width;
  }
  std::size_t byteSize() const { return data.size() * sizeof(std::uint32_t); }

  // Packs straight (not premultiplied) 8-bit components into one pixel.
  static std::uint32_t premultiplied(unsigned r, unsigned g, unsigned b, unsigned a) {
    if (a == 0) return 0;
    if (a != 255) {
      r = (r * a + 127) / 255;
      g = (g * a + 127) / 255;
      b = (b * a + 127) / 255;
    }
    return (std::uint32_t{a} << 24) | (r << 16) | (g << 8) | b;
  }
};

}  // namespace zv

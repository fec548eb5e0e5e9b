// zv::CGImage is a bitmap image of a known size whose pixels may be decoded only when first asked
// for. An image either owns its pixels (decoded now, or once on first use and then kept and
// shared by every holder), or asks a provider each time (a GIF frame, which its image source
// composites again rather than keeping a hundred full frames alive). Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

class CGImage {
 public:
  using Provider = std::function<std::shared_ptr<const PixelBuffer>()>;

  // An image of the given pixels; nullptr when there are none.
  static std::shared_ptr<CGImage> withPixels(std::shared_ptr<const PixelBuffer> pixels);
  // An image whose pixels the provider decodes on first use; they are then kept (keep) or asked
  // for again on every use.
  static std::shared_ptr<CGImage> lazy(int width, int height, Provider provider, bool keep);

  CGImage(int width, int height, Provider provider, bool keep)
      : width_(width), height_(height), provider_(std::move(provider)), keep_(keep) {}

  int width() const { return width_; }
  int height() const { return height_; }
  // The decoded pixels, or nullptr when decoding fails (damaged data): drawn as nothing.
  std::shared_ptr<const PixelBuffer> pixels() const;
  // Whether pixels are held now (for memory tests).
  bool holdsPixels() const;

 private:
  int width_;
  int height_;
  Provider provider_;
  bool keep_;
  mutable std::once_flag once_;
  mutable std::shared_ptr<const PixelBuffer> kept_;
};

}  // namespace zv

// zv::CGImage is a bitmap image of a known size whose pixels may be decoded only when first asked
// for. An image either owns its pixels (decoded now, or once on first use and then kept and
// shared by every holder), or asks a provider each time (a GIF frame, which its image source
// composites again rather than keeping a hundred full frames alive). A provider may decode fewer
// pixels than the image's size when it is drawn smaller (a camera photo in a 375-point view):
// what is kept is then decoded again only if the image is later drawn larger. Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

class CGImage {
 public:
  // Gives pixels covering the pixel size asked for (0 by 0: the image's own size).
  using Provider = std::function<std::shared_ptr<const PixelBuffer>(int width, int height)>;

  // An image of the given pixels; nullptr when there are none.
  static std::shared_ptr<CGImage> withPixels(std::shared_ptr<const PixelBuffer> pixels);
  // An image whose pixels the provider decodes on first use; they are then kept (keep) or asked
  // for again on every use.
  static std::shared_ptr<CGImage> lazy(int width, int height, Provider provider, bool keep);

  CGImage(int width, int height, Provider provider, bool keep)
      : width_(width), height_(height), provider_(std::move(provider)), keep_(keep) {}

  int width() const { return width_; }
  int height() const { return height_; }
  // The decoded pixels, or nullptr when decoding fails (damaged data): drawn as nothing. Without
  // a size, what is kept or else the image's own size (within the pixel budget); with one, pixels
  // enough to draw it that many pixels large.
  std::shared_ptr<const PixelBuffer> pixels() const;
  std::shared_ptr<const PixelBuffer> pixels(int width, int height) const;
  // Whether pixels are held now (for memory tests).
  bool holdsPixels() const;

 private:
  int width_;
  int height_;
  Provider provider_;
  bool keep_;
  mutable bool decoded_ = false;
  mutable int keptWidth_ = 0;  // the size kept_ was asked for; 0 by 0 for the image's own
  mutable int keptHeight_ = 0;
  mutable std::shared_ptr<const PixelBuffer> kept_;
};

}  // namespace zv

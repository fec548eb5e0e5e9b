#include "platform/graphics/CGImage.h"

#include <algorithm>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

std::shared_ptr<CGImage> CGImage::withPixels(std::shared_ptr<const PixelBuffer> pixels) {
  if (!pixels || pixels->width <= 0 || pixels->height <= 0) return nullptr;
  auto image = std::make_shared<CGImage>(pixels->width, pixels->height, nullptr, true);
  image->kept_ = std::move(pixels);
  image->decoded_ = true;
  return image;
}

std::shared_ptr<CGImage> CGImage::lazy(int width, int height, Provider provider, bool keep) {
  if (width <= 0 || height <= 0 || !provider) return nullptr;
  return std::make_shared<CGImage>(width, height, std::move(provider), keep);
}

std::shared_ptr<const PixelBuffer> CGImage::pixels() const {
  if (decoded_) return kept_;
  return pixels(0, 0);
}

std::shared_ptr<const PixelBuffer> CGImage::pixels(int width, int height) const {
  if (width >= width_ || height >= height_ || width <= 0 || height <= 0) width = height = 0;
  if (!keep_) return provider_(width, height);
  bool covered = decoded_ && (!provider_ || (keptWidth_ == 0 && keptHeight_ == 0) ||
                              (width != 0 && width <= keptWidth_ && height <= keptHeight_));
  if (covered) return kept_;
  if (decoded_ && width != 0) {
    // Drawn larger than before: a quarter more than asked, so that a view growing a little at a
    // time does not decode on every frame.
    width = std::max(width, keptWidth_ + keptWidth_ / 4);
    height = std::max(height, keptHeight_ + keptHeight_ / 4);
    if (width >= width_ || height >= height_) width = height = 0;
  }
  kept_ = nullptr;  // the smaller pixels go before the larger ones are made
  kept_ = provider_(width, height);
  keptWidth_ = width;
  keptHeight_ = height;
  decoded_ = true;
  return kept_;
}

bool CGImage::holdsPixels() const { return kept_ != nullptr; }

}  // namespace zv

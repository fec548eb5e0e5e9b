#include "platform/graphics/CGImage.h"

#include "platform/graphics/PixelBuffer.h"

namespace zv {

std::shared_ptr<CGImage> CGImage::withPixels(std::shared_ptr<const PixelBuffer> pixels) {
  if (!pixels || pixels->width <= 0 || pixels->height <= 0) return nullptr;
  auto image = std::make_shared<CGImage>(pixels->width, pixels->height, nullptr, true);
  std::call_once(image->once_, [&] { image->kept_ = std::move(pixels); });
  return image;
}

std::shared_ptr<CGImage> CGImage::lazy(int width, int height, Provider provider, bool keep) {
  if (width <= 0 || height <= 0 || !provider) return nullptr;
  return std::make_shared<CGImage>(width, height, std::move(provider), keep);
}

std::shared_ptr<const PixelBuffer> CGImage::pixels() const {
  if (!keep_) return provider_();
  std::call_once(once_, [this] { kept_ = provider_(); });
  return kept_;
}

bool CGImage::holdsPixels() const { return kept_ != nullptr; }

}  // namespace zv

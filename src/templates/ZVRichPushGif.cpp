#include "templates/ZVRichPushGif.h"

#include <cmath>
#include <limits>
#include <vector>

#include "platform/graphics/CGImageSource.h"

namespace zv {

namespace {

// Delays are kept small enough that their sum over the most frames a source reads stays a 32-bit
// integer.
constexpr std::int32_t kMaxDelay =
    std::numeric_limits<std::int32_t>::max() / static_cast<std::int32_t>(CGImageSource::kMaxFrames);

std::int32_t greatestCommonDivisor(std::int32_t a, std::int32_t b) {
  std::int32_t dividend = a > b ? a : b, divisor = a > b ? b : a;
  while (divisor != 0) {
    std::int32_t rest = dividend % divisor;
    dividend = divisor;
    divisor = rest;
  }
  return dividend;
}

std::vector<std::shared_ptr<UIImage>> frameArray(
    std::size_t count, const std::vector<std::shared_ptr<CGImage>>& images,
    const std::vector<std::int32_t>& delays, std::int32_t total) {
  std::int32_t slot = delays[0];
  for (std::size_t i = 1; i < count; ++i) slot = greatestCommonDivisor(slot, delays[i]);
  std::int32_t length = total / slot;
  if (length > ZVRichPushGif::kMaxSlots) return {};
  std::vector<std::shared_ptr<UIImage>> frames;
  frames.reserve(static_cast<std::size_t>(length));
  for (std::size_t i = 0; i < count; ++i) {
    auto frame = UIImage::imageWithCGImage(images[i]);
    for (std::int32_t j = 0; j < delays[i] / slot; ++j) frames.push_back(frame);
  }
  return frames;
}

std::shared_ptr<UIImage> animatedImageWithAnimatedGIFImageSource(const CGImageSource& source) {
  std::size_t count = source.count();
  std::vector<std::shared_ptr<CGImage>> images;
  std::vector<std::int32_t> delays;
  images.reserve(count);
  delays.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    auto image = source.createImageAtIndex(i);
    if (!image) continue;  // a frame that does not decode is left out
    images.push_back(std::move(image));
    delays.push_back(ZVRichPushGif::delayForFrameProperties(source.copyPropertiesAtIndex(i)));
  }
  if (images.empty()) return nullptr;
  std::int32_t total = 0;
  for (std::int32_t delay : delays) total += delay;
  auto frames = frameArray(images.size(), images, delays, total);
  if (frames.empty()) return nullptr;
  return UIImage::animatedImageWithImages(std::move(frames), total / 100.0);
}

std::shared_ptr<UIImage> animatedImageWithAnimatedGIFReleasingImageSource(
    std::shared_ptr<CGImageSource> source) {
  if (!source) return nullptr;
  auto image = animatedImageWithAnimatedGIFImageSource(*source);
  source.reset();  // released exactly once, on every path
  return image;
}

}  // namespace

std::int32_t ZVRichPushGif::delayForFrameProperties(const Value& properties) {
  if (!properties.isObject()) return 1;
  Value gif = properties.get(kCGImagePropertyGIFDictionary);
  if (!gif.isObject()) return 1;
  Value chosen = gif.get(kCGImagePropertyGIFUnclampedDelayTime);
  if (!chosen.isNumber() || chosen.doubleValue() == 0) {
    chosen = gif.get(kCGImagePropertyGIFDelayTime);
  }
  double seconds = chosen.isNumber() ? chosen.doubleValue() : 0;
  if (!(seconds > 0)) return 1;
  // Ties to even, as the processor rounds by default.
  double hundredths = std::nearbyint(seconds * 100.0);
  if (hundredths < 1) return 1;  // a positive delay under half a hundredth
  if (hundredths > kMaxDelay) return kMaxDelay;
  return static_cast<std::int32_t>(hundredths);
}

std::shared_ptr<UIImage> ZVRichPushGif::animatedImageWithAnimatedGIFData(
    std::shared_ptr<const std::string> data) {
  return animatedImageWithAnimatedGIFReleasingImageSource(
      CGImageSource::createWithData(std::move(data)));
}

std::shared_ptr<UIImage> ZVRichPushGif::animatedImageWithAnimatedGIFURL(const Url& url) {
  return animatedImageWithAnimatedGIFReleasingImageSource(
      CGImageSource::createWithURL(url.filePath()));
}

}  // namespace zv

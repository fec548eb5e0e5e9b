#include "platform/graphics/CGImageSource.h"

#include <fstream>
#include <iterator>

#include "platform/graphics/GifDecoder.h"
#include "platform/graphics/ImageDecoder.h"

namespace zv {

namespace json = boost::json;

CGImageSource::CGImageSource(std::shared_ptr<GifDecoder> gif) : gif_(std::move(gif)) {}
CGImageSource::CGImageSource(std::shared_ptr<CGImage> still) : still_(std::move(still)) {}

std::shared_ptr<CGImageSource> CGImageSource::createWithData(
    std::shared_ptr<const std::string> data) {
  if (!data) return nullptr;
  if (ImageDecoder::sniff(*data) == ImageFormat::kGif) {
    auto gif = GifDecoder::open(data, kMaxFrames);
    return gif ? std::make_shared<CGImageSource>(std::move(gif)) : nullptr;
  }
  auto header = ImageDecoder::readHeader(*data);
  if (!header) return nullptr;
  auto still = CGImage::lazy(
      header->width, header->height,
      [data](int w, int h) {
        return ImageDecoder::decode(data, {w, h});
      },
      true);
  return std::make_shared<CGImageSource>(std::move(still));
}

std::shared_ptr<CGImageSource> CGImageSource::createWithURL(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return nullptr;
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) return nullptr;
  return createWithData(std::make_shared<const std::string>(std::move(bytes)));
}

std::size_t CGImageSource::count() const { return gif_ ? gif_->frames().size() : 1; }

std::shared_ptr<CGImage> CGImageSource::createImageAtIndex(std::size_t index) const {
  if (!gif_) return index == 0 ? still_ : nullptr;
  if (index >= gif_->frames().size()) return nullptr;
  // Composited again each time it is drawn; the decoder keeps only its one canvas.
  return CGImage::lazy(
      gif_->width(), gif_->height(),
      [gif = gif_, index](int, int) { return gif->composite(index); }, false);
}

Value CGImageSource::copyPropertiesAtIndex(std::size_t index) const {
  if (index >= count()) return {};
  json::object properties;
  if (!gif_) {
    properties[kCGImagePropertyPixelWidth] = still_->width();
    properties[kCGImagePropertyPixelHeight] = still_->height();
    return Value(std::move(properties));
  }
  properties[kCGImagePropertyPixelWidth] = gif_->width();
  properties[kCGImagePropertyPixelHeight] = gif_->height();
  json::object gif;
  if (auto delay = gif_->frames()[index].delay) {
    double seconds = *delay / 100.0;
    gif[kCGImagePropertyGIFUnclampedDelayTime] = seconds;
    gif[kCGImagePropertyGIFDelayTime] = *delay <= 1 ? 0.1 : seconds;
  }
  gif["HasGlobalColorMap"] = gif_->hasGlobalColorTable();
  properties[kCGImagePropertyGIFDictionary] = std::move(gif);
  return Value(std::move(properties));
}

}  // namespace zv

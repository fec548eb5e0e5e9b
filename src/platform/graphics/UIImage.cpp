#include "platform/graphics/UIImage.h"

#include <fstream>
#include <iterator>

#include "platform/graphics/ImageDecoder.h"

namespace zv {

std::shared_ptr<UIImage> UIImage::imageWithData(std::shared_ptr<const std::string> data) {
  if (!data) return nullptr;
  auto header = ImageDecoder::readHeader(*data);
  if (!header) return nullptr;
  auto image = CGImage::lazy(
      header->width, header->height,
      [data](int w, int h) {
        return ImageDecoder::decode(data, {w, h});
      },
      true);
  return imageWithCGImage(std::move(image));
}

std::shared_ptr<UIImage> UIImage::imageWithData(std::string data) {
  return imageWithData(std::make_shared<const std::string>(std::move(data)));
}

std::shared_ptr<UIImage> UIImage::imageWithContentsOfFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return nullptr;
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) return nullptr;
  return imageWithData(std::move(bytes));
}

std::shared_ptr<UIImage> UIImage::imageWithCGImage(std::shared_ptr<CGImage> image) {
  if (!image) return nullptr;
  return std::make_shared<UIImage>(std::move(image));
}

std::shared_ptr<UIImage> UIImage::animatedImageWithImages(
    std::vector<std::shared_ptr<UIImage>> images, double duration) {
  if (images.empty() || !images.front()) return nullptr;
  auto animated = std::make_shared<UIImage>(images.front()->cgImage());
  animated->images_ = std::move(images);
  animated->duration_ = duration;
  return animated;
}

CGSize UIImage::size() const {
  if (!image_) return {};
  return CGSize{static_cast<CGFloat>(image_->width()), static_cast<CGFloat>(image_->height())};
}

}  // namespace zv

// zv::UIImage is an image as the content side's views hold it: a size in points (scale 1) and its
// bitmap (a CGImage), or an animation (a list of images shown at an even pace over a duration).
// An image made from bytes reads its size from the header alone and decodes its pixels when they
// are first drawn; the pixels are then kept once and shared by every holder. PNG, JPEG, WebP and
// GIF (its first frame, composited) are read. Main thread only.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/graphics/CGImage.h"
#include "zentrova/Geometry.h"

namespace zv {

class UIImage {
 public:
  // The image in the bytes; nullptr when they are not an image of a known format, the header is
  // damaged, or the pixels would exceed the budget. Damage past the header shows as nothing when
  // the image is drawn.
  static std::shared_ptr<UIImage> imageWithData(std::shared_ptr<const std::string> data);
  static std::shared_ptr<UIImage> imageWithData(std::string data);
  // The image in a file; nullptr when it cannot be read or is not an image.
  static std::shared_ptr<UIImage> imageWithContentsOfFile(const std::filesystem::path& path);
  // An image of the bitmap; nullptr for none.
  static std::shared_ptr<UIImage> imageWithCGImage(std::shared_ptr<CGImage> image);
  // An animated image: its size is the first image's, its own bitmap the first image's.
  static std::shared_ptr<UIImage> animatedImageWithImages(
      std::vector<std::shared_ptr<UIImage>> images, double duration);

  explicit UIImage(std::shared_ptr<CGImage> image) : image_(std::move(image)) {}

  CGSize size() const;
  CGFloat scale() const { return 1; }
  // The bitmap (named CGImage on the phone).
  const std::shared_ptr<CGImage>& cgImage() const { return image_; }
  // The animation's images (empty for a still image) and its duration in seconds.
  const std::vector<std::shared_ptr<UIImage>>& images() const { return images_; }
  double duration() const { return duration_; }

 private:
  std::shared_ptr<CGImage> image_;
  std::vector<std::shared_ptr<UIImage>> images_;
  double duration_ = 0;
};

}  // namespace zv

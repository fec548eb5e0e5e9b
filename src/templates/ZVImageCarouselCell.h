// zv::ZVImageCarouselCell is one page of the image carousel: an image view that fills it (aspect
// fill, clipped), from the interface "ZVImageCarouselCell"; reuse identifier "imgCell".
#pragma once

#include <memory>

#include "platform/ui/UICollectionViewCell.h"
#include "platform/ui/UIImageView.h"

namespace zv {

class ZVImageCarouselCell : public UICollectionViewCell {
 public:
  using UICollectionViewCell::UICollectionViewCell;
  static constexpr const char* kReuseIdentifier = "imgCell";
  std::string className() const override { return "ZVImageCarouselCell"; }

  std::weak_ptr<UIImageView> imageView;  // outlet
};

}  // namespace zv

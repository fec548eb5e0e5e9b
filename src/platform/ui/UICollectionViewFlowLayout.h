// zv::UICollectionViewFlowLayout places the items of one section in a row: horizontal, each item
// at the size the delegate gives (else itemSize), separated by minimumLineSpacing (0: edge to
// edge), from the section inset's left.
#pragma once

#include "zentrova/Geometry.h"

namespace zv {

enum class UICollectionViewScrollDirection { kVertical = 0, kHorizontal = 1 };

class UICollectionViewFlowLayout {
 public:
  CGSize itemSize() const { return itemSize_; }
  void setItemSize(CGSize size) { itemSize_ = size; }
  CGFloat minimumLineSpacing() const { return lineSpacing_; }
  void setMinimumLineSpacing(CGFloat spacing) { lineSpacing_ = spacing; }
  CGFloat minimumInteritemSpacing() const { return interitemSpacing_; }
  void setMinimumInteritemSpacing(CGFloat spacing) { interitemSpacing_ = spacing; }
  UICollectionViewScrollDirection scrollDirection() const { return direction_; }
  void setScrollDirection(UICollectionViewScrollDirection d) { direction_ = d; }

 private:
  CGSize itemSize_{50, 50};
  CGFloat lineSpacing_ = 0;
  CGFloat interitemSpacing_ = 0;
  UICollectionViewScrollDirection direction_ = UICollectionViewScrollDirection::kHorizontal;
};

}  // namespace zv

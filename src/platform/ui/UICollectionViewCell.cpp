#include "platform/ui/UICollectionViewCell.h"

namespace zv {

UICollectionViewCell::UICollectionViewCell(CGRect frame)
    : UIView(frame), contentView_(UIView::make(CGRect{{0, 0}, frame.size})) {}

const std::shared_ptr<UIView>& UICollectionViewCell::contentView() const {
  if (!contentView_->superview()) {
    const_cast<UICollectionViewCell*>(this)->insertSubview(contentView_, 0);
  }
  return contentView_;
}

void UICollectionViewCell::boundsDidChange() { contentView_->setFrame(bounds()); }

}  // namespace zv

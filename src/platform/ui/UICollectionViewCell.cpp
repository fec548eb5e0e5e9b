#include "platform/ui/UICollectionViewCell.h"

namespace zv {

UICollectionViewCell::UICollectionViewCell(CGRect frame)
    : UIView(frame), contentView_(UIView::make(CGRect{{0, 0}, frame.size})) {}

void UICollectionViewCell::boundsDidChange() { contentView_->setFrame(bounds()); }

}  // namespace zv

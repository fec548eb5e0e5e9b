// zv::UICollectionViewCell is one item's view in a collection view: its content goes in
// contentView(). Cells are made by the builder registered for their reuse identifier and reused
// once they scroll out of view. Main thread only.
#pragma once

#include <string>

#include "zentrova/UIView.h"

namespace zv {

struct NSIndexPath {
  long item = 0;
  long section = 0;
  static NSIndexPath indexPathForItem(long item, long section = 0) { return {item, section}; }
  bool operator==(const NSIndexPath&) const = default;
};

class UICollectionViewCell : public UIView {
 public:
  explicit UICollectionViewCell(CGRect frame = {});
  std::string className() const override { return "UICollectionViewCell"; }

  // The view a cell's content goes in, the cell's first subview (added on first use: a view
  // cannot add subviews while it is being made).
  const std::shared_ptr<UIView>& contentView() const;
  const std::string& reuseIdentifier() const { return reuseIdentifier_; }
  // Called before the cell is handed out again by dequeueReusableCell.
  virtual void prepareForReuse() {}

 protected:
  void boundsDidChange() override;

 private:
  friend class UICollectionView;
  std::shared_ptr<UIView> contentView_;
  std::string reuseIdentifier_;
};

}  // namespace zv

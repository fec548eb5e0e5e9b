// zv::UICollectionView shows the items of one section in a horizontal row that scrolls, pages by
// its width when paging is on, and makes only the cells in view (cells that leave the view go back
// to a reuse pool). Its data source gives the number of items and each cell; its delegate gives
// item sizes and hears will-display (in the order a scroll meets them, as cells come into view),
// selection (a tap on a cell) and the end of a swipe's deceleration. Animated scrolls take 0.08 s
// of run-loop time (short enough that a page the carousel's timer turns to at 6.0 s is fully shown
// at 6.1 s): the cells the scroll brings into view are displayed as it starts, the offset follows
// the run loop's time, and a timer on the run loop ends it. Main thread only.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "platform/ui/UICollectionViewCell.h"
#include "platform/ui/UICollectionViewFlowLayout.h"
#include "zentrova/UIView.h"

namespace zv {

class UICollectionView;
class NSTimer;

class UICollectionViewDataSource {
 public:
  virtual ~UICollectionViewDataSource() = default;
  virtual long numberOfItemsInSection(UICollectionView& view, long section) = 0;
  virtual std::shared_ptr<UICollectionViewCell> cellForItemAtIndexPath(UICollectionView& view,
                                                                       NSIndexPath indexPath) = 0;
};

class UICollectionViewDelegate {
 public:
  virtual ~UICollectionViewDelegate() = default;
  // The item's size; nullopt takes the layout's itemSize.
  virtual std::optional<CGSize> sizeForItemAtIndexPath(UICollectionView&,
                                                       const UICollectionViewFlowLayout&,
                                                       NSIndexPath) {
    return std::nullopt;
  }
  virtual void willDisplayCell(UICollectionView&, UICollectionViewCell&, NSIndexPath) {}
  virtual void didSelectItemAtIndexPath(UICollectionView&, NSIndexPath) {}
  virtual void scrollViewDidEndDecelerating(UICollectionView&) {}
};

enum class UICollectionViewScrollPosition { kNone = 0, kCenteredHorizontally = 1 << 4 };

class UICollectionView : public UIView {
 public:
  static constexpr double kScrollAnimationDuration = 0.08;
  using CellBuilder = std::function<std::shared_ptr<UICollectionViewCell>()>;

  explicit UICollectionView(CGRect frame = {},
                            std::shared_ptr<UICollectionViewFlowLayout> layout = nullptr);
  static std::shared_ptr<UICollectionView> make(
      CGRect frame, std::shared_ptr<UICollectionViewFlowLayout> layout = nullptr) {
    return std::make_shared<UICollectionView>(frame, std::move(layout));
  }
  ~UICollectionView() override;
  std::string className() const override { return "UICollectionView"; }

  const std::shared_ptr<UICollectionViewFlowLayout>& collectionViewLayout() const {
    return layout_;
  }
  void setDataSource(std::weak_ptr<UICollectionViewDataSource> source) { dataSource_ = source; }
  void setDelegate(std::weak_ptr<UICollectionViewDelegate> delegate) { delegate_ = delegate; }

  void registerCell(const std::string& reuseIdentifier, CellBuilder builder);
  // A cell from the reuse pool, else a new one from the builder; raises zv::Exception for an
  // identifier nothing was registered for.
  std::shared_ptr<UICollectionViewCell> dequeueReusableCell(const std::string& reuseIdentifier,
                                                            NSIndexPath indexPath);
  void reloadData();
  long numberOfItems() const { return static_cast<long>(itemFrames_.size()); }
  // The cells in view, by item.
  const std::map<long, std::shared_ptr<UICollectionViewCell>>& visibleCells() const {
    return visible_;
  }
  std::shared_ptr<UICollectionViewCell> cellForItem(long item) const;
  CGRect itemFrame(long item) const;
  CGSize contentSize() const;

  // The offset at the run loop's time (mid-animation, on the way).
  CGPoint contentOffset() const;
  void setContentOffset(CGPoint offset, bool animated);
  bool isScrollEnabled() const { return scrollEnabled_; }
  void setScrollEnabled(bool enabled) { scrollEnabled_ = enabled; }
  bool isPagingEnabled() const { return pagingEnabled_; }
  void setPagingEnabled(bool enabled) { pagingEnabled_ = enabled; }
  // Scrolls so the item is centred horizontally (within the content).
  void scrollToItem(NSIndexPath indexPath, UICollectionViewScrollPosition position, bool animated);
  // A user's swipe to `page` (a page is the view's width): animated, then the delegate's
  // scrollViewDidEndDecelerating. Nothing happens when scrolling is disabled.
  void swipeToPage(long page);
  // The page the offset is on.
  long currentPage() const;

  void layoutSubviews() override;
  bool handleTap(CGPoint point) override;

 private:
  struct Animation {
    CGPoint from, to;
    double start = 0;
    bool decelerating = false;
  };
  void computeItemFrames();
  void updateVisibleCells(CGFloat minX, CGFloat maxX, bool backwards = false);
  void placeCells();
  void finishAnimation();
  CGPoint clamped(CGPoint offset) const;

  std::shared_ptr<UICollectionViewFlowLayout> layout_;
  std::weak_ptr<UICollectionViewDataSource> dataSource_;
  std::weak_ptr<UICollectionViewDelegate> delegate_;
  std::map<std::string, CellBuilder> builders_;
  std::map<std::string, std::vector<std::shared_ptr<UICollectionViewCell>>> pool_;
  std::vector<CGRect> itemFrames_;
  std::map<long, std::shared_ptr<UICollectionViewCell>> visible_;
  CGPoint offset_;
  bool scrollEnabled_ = true;
  bool pagingEnabled_ = false;
  bool needsReload_ = true;
  CGSize laidOutSize_;
  std::optional<Animation> animation_;
  std::shared_ptr<NSTimer> animationTimer_;
};

}  // namespace zv

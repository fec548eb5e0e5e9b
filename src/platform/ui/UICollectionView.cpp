#include "platform/ui/UICollectionView.h"

#include <algorithm>
#include <cmath>

#include "platform/ui/NSTimer.h"
#include "platform/ui/RunLoop.h"
#include "zentrova/Exception.h"

namespace zv {

UICollectionView::UICollectionView(CGRect frame, std::shared_ptr<UICollectionViewFlowLayout> layout)
    : UIView(frame),
      layout_(layout ? std::move(layout) : std::make_shared<UICollectionViewFlowLayout>()) {
  setClipsToBounds(true);
}

UICollectionView::~UICollectionView() {
  if (animationTimer_) animationTimer_->invalidate();
}

void UICollectionView::registerCell(const std::string& reuseIdentifier, CellBuilder builder) {
  builders_[reuseIdentifier] = std::move(builder);
}

std::shared_ptr<UICollectionViewCell> UICollectionView::dequeueReusableCell(
    const std::string& reuseIdentifier, NSIndexPath indexPath) {
  auto& pool = pool_[reuseIdentifier];
  if (!pool.empty()) {
    auto cell = pool.back();
    pool.pop_back();
    cell->prepareForReuse();
    return cell;
  }
  auto builder = builders_.find(reuseIdentifier);
  if (builder == builders_.end() || !builder->second)
    Exception::raise(Exception::kInvalidArgument,
                     "could not dequeue a view of kind: UICollectionElementKindCell with "
                     "identifier " +
                         reuseIdentifier + " (item " + std::to_string(indexPath.item) +
                         ") - must register a cell builder for the identifier");
  auto cell = builder->second();
  if (!cell)
    Exception::raise(Exception::kInvalidArgument,
                     "the cell builder for " + reuseIdentifier + " returned no cell");
  cell->reuseIdentifier_ = reuseIdentifier;
  return cell;
}

void UICollectionView::reloadData() {
  for (auto& [item, cell] : visible_) {
    cell->removeFromSuperview();
    pool_[cell->reuseIdentifier()].push_back(cell);
  }
  visible_.clear();
  computeItemFrames();
  offset_ = clamped(offset_);
  needsReload_ = false;
  laidOutSize_ = frame().size;
  CGPoint now = contentOffset();
  updateVisibleCells(now.x, now.x + frame().size.width);
}

void UICollectionView::computeItemFrames() {
  itemFrames_.clear();
  auto source = dataSource_.lock();
  if (!source) return;
  long count = std::max(0L, source->numberOfItemsInSection(*this, 0));
  auto delegate = delegate_.lock();
  CGFloat x = 0;
  for (long i = 0; i < count; ++i) {
    CGSize size = layout_->itemSize();
    if (delegate)
      if (auto s = delegate->sizeForItemAtIndexPath(*this, *layout_, {i, 0})) size = *s;
    if (!std::isfinite(size.width) || size.width < 0) size.width = 0;
    if (!std::isfinite(size.height) || size.height < 0) size.height = 0;
    itemFrames_.push_back(CGRect{{x, 0}, size});
    x += size.width + layout_->minimumLineSpacing();
  }
}

CGRect UICollectionView::itemFrame(long item) const {
  if (item < 0 || item >= numberOfItems()) return {};
  return itemFrames_[static_cast<size_t>(item)];
}

CGSize UICollectionView::contentSize() const {
  CGSize size;
  for (const auto& f : itemFrames_) {
    size.width = std::max(size.width, f.maxX());
    size.height = std::max(size.height, f.maxY());
  }
  return size;
}

std::shared_ptr<UICollectionViewCell> UICollectionView::cellForItem(long item) const {
  auto it = visible_.find(item);
  return it == visible_.end() ? nullptr : it->second;
}

CGPoint UICollectionView::clamped(CGPoint offset) const {
  CGFloat maxX = std::max(0.0, contentSize().width - frame().size.width);
  return {std::clamp(offset.x, 0.0, maxX), 0};
}

void UICollectionView::updateVisibleCells(CGFloat minX, CGFloat maxX, bool backwards) {
  // Cells wholly outside [minX, maxX) go back to the pool; items inside that have no cell get one
  // and are displayed in the order a scroll meets them: item order, or the reverse for a scroll
  // back towards the start.
  for (auto it = visible_.begin(); it != visible_.end();) {
    const CGRect& f = itemFrames_.at(static_cast<size_t>(it->first));
    if (f.maxX() <= minX || f.minX() >= maxX) {
      it->second->removeFromSuperview();
      pool_[it->second->reuseIdentifier()].push_back(it->second);
      it = visible_.erase(it);
    } else {
      ++it;
    }
  }
  auto source = dataSource_.lock();
  if (!source) return;
  for (long k = 0; k < numberOfItems(); ++k) {
    long i = backwards ? numberOfItems() - 1 - k : k;
    const CGRect& f = itemFrames_[static_cast<size_t>(i)];
    if (f.maxX() <= minX || f.minX() >= maxX || f.size.width <= 0 || visible_.count(i)) continue;
    auto cell = source->cellForItemAtIndexPath(*this, {i, 0});
    if (!cell) Exception::raise(Exception::kInvalidArgument, "the data source returned no cell");
    visible_[i] = cell;
    addSubview(cell);
    placeCells();
    if (auto delegate = delegate_.lock()) delegate->willDisplayCell(*this, *cell, {i, 0});
  }
  placeCells();
}

void UICollectionView::placeCells() {
  CGPoint offset = contentOffset();
  for (auto& [item, cell] : visible_) {
    CGRect f = itemFrames_[static_cast<size_t>(item)];
    f.origin.x -= offset.x;
    f.origin.y -= offset.y;
    cell->setFrame(f);
  }
}

CGPoint UICollectionView::contentOffset() const {
  if (!animation_) return offset_;
  double t = (RunLoop::current()->now() - animation_->start) / kScrollAnimationDuration;
  t = std::clamp(t, 0.0, 1.0);
  double eased = t * t * (3 - 2 * t);  // ease in and out
  return {animation_->from.x + (animation_->to.x - animation_->from.x) * eased,
          animation_->from.y + (animation_->to.y - animation_->from.y) * eased};
}

void UICollectionView::setContentOffset(CGPoint offset, bool animated) {
  if (!std::isfinite(offset.x)) return;
  CGPoint from = contentOffset();
  if (animationTimer_) animationTimer_->invalidate();
  animation_.reset();
  offset_ = clamped(offset);
  CGFloat width = frame().size.width;
  if (!animated || from == offset_) {
    updateVisibleCells(offset_.x, offset_.x + width);
    return;
  }
  animation_ = Animation{from, offset_, RunLoop::current()->now(), false};
  // Every cell the scroll passes over shows during it.
  updateVisibleCells(std::min(from.x, offset_.x), std::max(from.x, offset_.x) + width,
                     offset_.x < from.x);
  std::weak_ptr<UIView> weak = weak_from_this();
  animationTimer_ =
      NSTimer::scheduledTimerWithTimeInterval(kScrollAnimationDuration, false, [weak](NSTimer&) {
        if (auto self = std::static_pointer_cast<UICollectionView>(weak.lock()))
          self->finishAnimation();
      });
}

void UICollectionView::finishAnimation() {
  bool decelerating = animation_ && animation_->decelerating;
  animation_.reset();
  animationTimer_.reset();
  updateVisibleCells(offset_.x, offset_.x + frame().size.width);
  if (decelerating)
    if (auto delegate = delegate_.lock()) delegate->scrollViewDidEndDecelerating(*this);
}

void UICollectionView::scrollToItem(NSIndexPath indexPath, UICollectionViewScrollPosition,
                                    bool animated) {
  if (indexPath.item < 0 || indexPath.item >= numberOfItems()) return;
  CGRect f = itemFrame(indexPath.item);
  setContentOffset({f.minX() + f.size.width / 2 - frame().size.width / 2, 0}, animated);
}

void UICollectionView::swipeToPage(long page) {
  if (!scrollEnabled_) return;
  CGFloat width = frame().size.width;
  setContentOffset({static_cast<CGFloat>(page) * width, 0}, true);
  if (animation_) {
    animation_->decelerating = true;
  } else if (auto delegate = delegate_.lock()) {
    delegate->scrollViewDidEndDecelerating(*this);
  }
}

long UICollectionView::currentPage() const {
  CGFloat width = frame().size.width;
  if (width <= 0) return 0;
  return static_cast<long>(std::lround(contentOffset().x / width));
}

void UICollectionView::layoutSubviews() {
  if (needsReload_ || laidOutSize_ != frame().size) {
    reloadData();
  } else {
    placeCells();
  }
}

bool UICollectionView::handleTap(CGPoint point) {
  CGFloat x = point.x + contentOffset().x;
  for (const auto& [item, cell] : visible_) {
    const CGRect& f = itemFrames_[static_cast<size_t>(item)];
    if (x >= f.minX() && x < f.maxX() && point.y >= f.minY() && point.y < f.maxY()) {
      if (auto delegate = delegate_.lock()) delegate->didSelectItemAtIndexPath(*this, {item, 0});
      return true;
    }
  }
  return false;
}

}  // namespace zv

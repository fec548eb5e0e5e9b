// zv::ZVCarouselCollectionView shows the cards of an image-carousel push as a strip of pages, one
// downloaded image per card (cards without an attachment are left out), all as tall as the tallest
// image at the view's width but at most 70% of the screen, with a page indicator. In automatic
// mode the pages advance every 3 seconds on the run loop and swiping is off; otherwise the user
// swipes. A tapped card goes to the template handler as a card action. Its strip and indicator
// come from the interface "ZVCarouselCollectionView". Main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "model/ZVCardCarouselItem.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "platform/ui/UICollectionView.h"
#include "platform/ui/UIPageControl.h"

namespace zv {

class UNNotification;
class UNNotificationAttachment;
class ZVRichPush;
class ZVImageCarouselCell;

class ZVCarouselCollectionView : public UIView,
                                 public UICollectionViewDataSource,
                                 public UICollectionViewDelegate {
 public:
  static constexpr double kPagingInterval = 3.0;
  using UIView::UIView;
  std::string className() const override { return "ZVCarouselCollectionView"; }

  void configureCollectionViewWithRichPush(const std::shared_ptr<ZVRichPush>& richPush,
                                           const std::shared_ptr<UNNotification>& notification);
  void registerForCellNibs();
  // Builds the items (then stores them with the setter below).
  void setCardsArray();
  void setCardsArray(std::vector<std::shared_ptr<ZVCardCarouselItem>> items) {
    cardsArray = std::move(items);
  }
  void configurePageControl();
  void setImageHeightForSimpleCarousel();
  void initiateTimer();
  void pushNext();
  std::shared_ptr<ZVImageCarouselCell> getImageCarouselCellForItem(const ZVCardCarouselItem& item,
                                                                   NSIndexPath indexPath);
  std::shared_ptr<UNNotificationAttachment> getAttachmentForURL(const std::string& url) const;

  // Data source and delegate.
  long numberOfItemsInSection(UICollectionView& view, long section) override;
  std::shared_ptr<UICollectionViewCell> cellForItemAtIndexPath(UICollectionView& view,
                                                               NSIndexPath indexPath) override;
  std::optional<CGSize> sizeForItemAtIndexPath(UICollectionView&, const UICollectionViewFlowLayout&,
                                               NSIndexPath) override;
  void willDisplayCell(UICollectionView&, UICollectionViewCell&, NSIndexPath indexPath) override;
  void didSelectItemAtIndexPath(UICollectionView&, NSIndexPath indexPath) override;
  void scrollViewDidEndDecelerating(UICollectionView& view) override;

  // Outlets and state.
  std::weak_ptr<UICollectionView> collectionView;
  std::weak_ptr<UIPageControl> pageControl;
  std::weak_ptr<NSLayoutConstraint> pageControlWidthConstraint;
  std::uint64_t templateType = 0;
  std::shared_ptr<ZVRichPush> richPushPayload;
  std::vector<std::shared_ptr<ZVCardCarouselItem>> cardsArray;
  std::shared_ptr<UNNotification> currentNotif;
  std::int64_t imageHeight = 0;
  bool autoStart = false;
  std::int64_t currentCardIndex = 0;
};

}  // namespace zv

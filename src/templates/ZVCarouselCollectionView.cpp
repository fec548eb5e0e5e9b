#include "templates/ZVCarouselCollectionView.h"

#include <cmath>

#include "model/ZVPushCard.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/SystemVersion.h"
#include "platform/graphics/UIImage.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/NSBundle.h"
#include "platform/ui/NSTimer.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UIScreen.h"
#include "templates/ZVImageCarouselCell.h"
#include "templates/ZVPushMediaView.h"
#include "templates/ZVRichNotifUtilsContent.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace zv {

namespace {
constexpr double kPageControlWidthPerItem = 60.0;
constexpr double kScreenHeightCap = 0.7;
constexpr double kOtherTemplatePageHeight = 250.0;
}  // namespace

void ZVCarouselCollectionView::configureCollectionViewWithRichPush(
    const std::shared_ptr<ZVRichPush>& richPush,
    const std::shared_ptr<UNNotification>& notification) {
  const auto mode = richPush ? richPush->expandedMode : nullptr;
  templateType = mode ? static_cast<std::uint64_t>(mode->templateType) : 0;
  if (templateType != static_cast<std::uint64_t>(ZVRichPushTemplateType::ImageCarousel)) return;
  registerForCellNibs();
  currentNotif = notification;
  richPushPayload = richPush;
  autoStart = mode->autoStart;
  setCardsArray();
  configurePageControl();
  currentCardIndex = 0;
  if (mode->bgColor == Color::clear()) {
    setBackgroundColor(systemVersion() >= 13.0 ? UIColor::systemBackgroundColor()
                                               : UIColor::whiteColor());
  } else {
    setBackgroundColor(mode->bgColor);
  }
  setImageHeightForSimpleCarousel();
  CGRect f = frame();
  f.size.height = static_cast<CGFloat>(imageHeight);
  setFrame(f);
  layoutIfNeeded();
  if (auto strip = collectionView.lock()) {
    auto self = std::static_pointer_cast<ZVCarouselCollectionView>(shared_from_this());
    strip->setDelegate(std::weak_ptr<UICollectionViewDelegate>(self));
    strip->setDataSource(std::weak_ptr<UICollectionViewDataSource>(self));
    strip->reloadData();
    if (autoStart) {
      strip->setScrollEnabled(false);
      initiateTimer();
    }
  }
}

void ZVCarouselCollectionView::registerForCellNibs() {
  auto strip = collectionView.lock();
  if (!strip) return;
  strip->registerCell(ZVImageCarouselCell::kReuseIdentifier, [this] {
    auto views = NSBundle::mainBundle().loadNibNamed("ZVImageCarouselCell", this);
    return views.empty() ? nullptr : std::dynamic_pointer_cast<UICollectionViewCell>(views.front());
  });
}

void ZVCarouselCollectionView::setCardsArray() {
  std::vector<std::shared_ptr<ZVCardCarouselItem>> items;
  const auto& mode = richPushPayload ? richPushPayload->expandedMode : nullptr;
  for (const auto& card : mode ? mode->cards : std::vector<std::shared_ptr<ZVPushCard>>{}) {
    // A card without a widget, or whose first widget has no content, has no image: skipped.
    if (!card || card->widgets.empty() || !card->widgets.front() ||
        !card->widgets.front()->content.isString()) {
      continue;
    }
    std::string url(card->widgets.front()->content.string());
    auto attachment = getAttachmentForURL(url);
    if (!attachment) continue;
    auto item = std::make_shared<ZVCardCarouselItem>();
    item->cardInfo = card;
    item->cardAttachment = attachment;
    if (auto bytes = readAttachment(*attachment)) {
      item->isGif = ZVRichNotifUtils::isImageGifWithURL(attachment->URL());
      // Only the header is read here: the pixels wait until the cell is drawn.
      double height = ZVRichNotifUtilsContent::getOptmisedImageHeightFromImage(
          UIImage::imageWithData(std::move(*bytes)), static_cast<float>(frame().size.width));
      item->cardHeight = std::isfinite(height) ? static_cast<std::int64_t>(height) : 0;
    }
    items.push_back(std::move(item));
  }
  setCardsArray(std::move(items));
}

void ZVCarouselCollectionView::configurePageControl() {
  auto dots = pageControl.lock();
  if (!dots) return;
  dots->setNumberOfPages(static_cast<long>(cardsArray.size()));
  dots->setCurrentPage(static_cast<long>(currentCardIndex));
  dots->setHidesForSinglePage(true);
  dots->layer()->setCornerRadius(10.0);
  dots->layer()->setMasksToBounds(true);
  if (auto width = pageControlWidthConstraint.lock()) {
    width->setConstant(static_cast<double>(cardsArray.size()) * kPageControlWidthPerItem);
  }
  dots->layoutIfNeeded();
  if (systemVersion() >= 14.0) dots->setBackgroundStyle(UIPageControlBackgroundStyle::kMinimal);
}

void ZVCarouselCollectionView::setImageHeightForSimpleCarousel() {
  imageHeight = 0;
  for (const auto& item : cardsArray) imageHeight = std::max(imageHeight, item->cardHeight);
  double cap = kScreenHeightCap * UIScreen::mainScreen().bounds().size.height;
  if (static_cast<double>(imageHeight) > cap) imageHeight = static_cast<std::int64_t>(cap);
}

// The timer holds the carousel weakly and stops once the carousel has left the view tree it was
// shown in (or is gone), where the phone would keep it running for the extension's life.
void ZVCarouselCollectionView::initiateTimer() {
  std::weak_ptr<UIView> weak = shared_from_this();
  auto shown = std::make_shared<bool>(false);
  NSTimer::scheduledTimerWithTimeInterval(kPagingInterval, true, [weak, shown](NSTimer& timer) {
    auto view = std::static_pointer_cast<ZVCarouselCollectionView>(weak.lock());
    if (!view || (*shown && !view->superview())) {
      timer.invalidate();
      return;
    }
    *shown = *shown || view->superview() != nullptr;
    view->pushNext();
  });
}

void ZVCarouselCollectionView::pushNext() {
  if (cardsArray.empty()) return;  // nothing to page to
  ++currentCardIndex;
  if (static_cast<std::uint64_t>(currentCardIndex) >= cardsArray.size()) currentCardIndex = 0;
  if (auto strip = collectionView.lock()) {
    strip->scrollToItem(NSIndexPath::indexPathForItem(static_cast<long>(currentCardIndex), 0),
                        UICollectionViewScrollPosition::kCenteredHorizontally, true);
  }
}

std::shared_ptr<ZVImageCarouselCell> ZVCarouselCollectionView::getImageCarouselCellForItem(
    const ZVCardCarouselItem& item, NSIndexPath indexPath) {
  auto strip = collectionView.lock();
  if (!strip) return nullptr;
  auto cell = std::dynamic_pointer_cast<ZVImageCarouselCell>(
      strip->dequeueReusableCell(ZVImageCarouselCell::kReuseIdentifier, indexPath));
  if (!cell || !item.cardAttachment) return cell;
  auto bytes = readAttachment(*item.cardAttachment);
  auto image = cell->imageView.lock();
  if (bytes && image) showAttachmentImage(*image, *bytes, item.isGif);
  return cell;
}

std::shared_ptr<UNNotificationAttachment> ZVCarouselCollectionView::getAttachmentForURL(
    const std::string& url) const {
  return attachmentForURL(currentNotif, url);
}

long ZVCarouselCollectionView::numberOfItemsInSection(UICollectionView&, long) {
  return static_cast<long>(cardsArray.size());
}

std::shared_ptr<UICollectionViewCell> ZVCarouselCollectionView::cellForItemAtIndexPath(
    UICollectionView&, NSIndexPath indexPath) {
  if (templateType != static_cast<std::uint64_t>(ZVRichPushTemplateType::ImageCarousel) ||
      indexPath.item < 0 || static_cast<std::size_t>(indexPath.item) >= cardsArray.size()) {
    return nullptr;
  }
  return getImageCarouselCellForItem(*cardsArray[static_cast<std::size_t>(indexPath.item)],
                                     indexPath);
}

std::optional<CGSize> ZVCarouselCollectionView::sizeForItemAtIndexPath(
    UICollectionView&, const UICollectionViewFlowLayout&, NSIndexPath) {
  bool carousel = templateType == static_cast<std::uint64_t>(ZVRichPushTemplateType::ImageCarousel);
  return CGSize{frame().size.width,
                carousel ? static_cast<CGFloat>(imageHeight) : kOtherTemplatePageHeight};
}

void ZVCarouselCollectionView::willDisplayCell(UICollectionView&, UICollectionViewCell&,
                                               NSIndexPath indexPath) {
  if (!autoStart) return;
  currentCardIndex = indexPath.item;
  if (auto dots = pageControl.lock()) dots->setCurrentPage(static_cast<long>(currentCardIndex));
}

void ZVCarouselCollectionView::didSelectItemAtIndexPath(UICollectionView&, NSIndexPath indexPath) {
  if (indexPath.item < 0 || static_cast<std::size_t>(indexPath.item) >= cardsArray.size()) return;
  const auto& item = cardsArray[static_cast<std::size_t>(indexPath.item)];
  boost::json::object info{{"card_id", item->cardInfo ? item->cardInfo->cardID : 0}};
  ZVPushTemplateHandler::sharedInstance().performCardActionWithInfo(std::move(info));
}

void ZVCarouselCollectionView::scrollViewDidEndDecelerating(UICollectionView& view) {
  if (autoStart) return;
  double width = frame().size.width;
  double page = width > 0 ? view.contentOffset().x / width : 0;
  auto index = std::isfinite(page) ? static_cast<std::int32_t>(page) : 0;
  currentCardIndex = index;
  if (auto dots = pageControl.lock()) dots->setCurrentPage(index);
}

}  // namespace zv

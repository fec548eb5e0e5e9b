#ifdef ZVPUSH_CONTENT
#include "preview/PreviewTree.h"

#include <boost/json.hpp>

#include "platform/graphics/UIImage.h"
#include "platform/media/AVPlayerLayer.h"
#include "platform/text/StyledText.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/UICollectionView.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UIImageView.h"
#include "platform/ui/UILabel.h"
#include "platform/ui/UIPageControl.h"
#include "templates/ZVCarouselCollectionView.h"
#include "templates/ZVPushBodyView.h"

namespace zvpush {

namespace {

namespace json = boost::json;

json::value color(const zv::ColorRef& c, const zv::UITraitCollection& traits) {
  if (!c) return nullptr;
  zv::ColorRef shown = zv::UIColor::resolve(c, traits);
  return json::array{shown->red, shown->green, shown->blue, shown->alpha};
}

json::value size(zv::CGSize s) { return json::array{s.width, s.height}; }

const char* gravityName(zv::AVLayerVideoGravity g) {
  switch (g) {
    case zv::AVLayerVideoGravity::kResizeAspectFill:
      return "AVLayerVideoGravityResizeAspectFill";
    case zv::AVLayerVideoGravity::kResize:
      return "AVLayerVideoGravityResize";
    case zv::AVLayerVideoGravity::kResizeAspect:
      break;
  }
  return "AVLayerVideoGravityResizeAspect";
}

void describeLabel(const zv::UILabel& label, json::object& o) {
  o["text"] = label.text();
  o["numberOfLines"] = label.numberOfLines();
  const zv::StyledText& text = label.attributedText();
  zv::ColorRef first = label.textColor();
  if (!text.runs().empty() && text.runs().front().attributes &&
      text.runs().front().attributes->foregroundColor) {
    first = text.runs().front().attributes->foregroundColor;
  }
  o["textColor"] = color(first, label.traitCollection());
  o["fontSize"] = label.font().size();
}

void describeImageView(const zv::UIImageView& view, json::object& o) {
  o["image"] = view.image() ? size(view.image()->size()) : json::value(nullptr);
  o["animationImages"] = view.animationImages().size();
  o["animationDuration"] = view.animationDuration();
  o["animating"] = view.isAnimating();
  o["shownFrame"] = view.animationFrameIndex();
}

void describeCollectionView(zv::UICollectionView& view, json::object& o) {
  zv::CGPoint offset = view.contentOffset();
  o["contentOffset"] = json::array{offset.x, offset.y};
  o["scrollEnabled"] = view.isScrollEnabled();
  o["items"] = view.numberOfItems();
  o["itemSize"] = view.numberOfItems() > 0 ? size(view.itemFrame(0).size)
                                           : size(view.collectionViewLayout()->itemSize());
}

json::value player(const zv::CALayer& layer) {
  for (const auto& sublayer : layer.sublayers()) {
    auto* clip = dynamic_cast<const zv::AVPlayerLayer*>(sublayer.get());
    if (!clip || !clip->player()) continue;
    const auto& p = *clip->player();
    const auto& item = p.currentItem();
    return json::object{
        {"url", item && item->asset() ? json::value(item->asset()->url().absoluteString())
                                      : json::value(nullptr)},
        {"videoGravity", gravityName(clip->videoGravity())},
        {"actionAtItemEnd", static_cast<int>(p.actionAtItemEnd())},
        {"playing", p.rate() > 0},
        {"time", p.currentTime()}};
  }
  return nullptr;
}

}  // namespace

json::value PreviewTree::describe(const zv::UIView& view) {
  json::object o;
  o["class"] = view.className();
  o["name"] = view.name().empty() ? json::value(nullptr) : json::value(view.name());
  zv::CGRect f = view.frame();
  o["frame"] = json::array{f.origin.x, f.origin.y, f.size.width, f.size.height};
  o["hidden"] = view.isHidden();
  o["backgroundColor"] = color(view.backgroundColor(), view.traitCollection());
  json::array formats;
  for (const auto& format : view.constraintFormats()) formats.push_back(json::value(format));
  o["constraints"] = std::move(formats);
  o["tapRecognizers"] = view.gestureRecognizers().size();
  if (auto* label = dynamic_cast<const zv::UILabel*>(&view)) describeLabel(*label, o);
  if (auto* image = dynamic_cast<const zv::UIImageView*>(&view)) describeImageView(*image, o);
  if (auto* strip = dynamic_cast<const zv::UICollectionView*>(&view)) {
    describeCollectionView(const_cast<zv::UICollectionView&>(*strip), o);
  }
  if (auto* dots = dynamic_cast<const zv::UIPageControl*>(&view)) {
    o["numberOfPages"] = dots->numberOfPages();
    o["currentPage"] = dots->currentPage();
    o["hidesForSinglePage"] = dots->hidesForSinglePage();
  }
  if (auto* carousel = dynamic_cast<const zv::ZVCarouselCollectionView*>(&view)) {
    o["currentCardIndex"] = carousel->currentCardIndex;
    o["imageHeight"] = carousel->imageHeight;
    o["autoStart"] = carousel->autoStart;
  }
  if (auto* body = dynamic_cast<const zv::ZVPushBodyView*>(&view)) {
    o["updatedHeight"] = body->updatedHeight;
  }
  if (auto clip = player(*view.layer()); !clip.is_null()) o["player"] = clip;
  json::array subviews;
  for (const auto& subview : view.subviews()) subviews.push_back(describe(*subview));
  o["subviews"] = std::move(subviews);
  return o;
}

}  // namespace zvpush
#endif

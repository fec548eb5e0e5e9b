#include "resources/ZVInterfaceFiles.h"

#include "platform/text/Font.h"
#include "platform/ui/NSBundle.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "platform/ui/UICollectionViewFlowLayout.h"
#include "platform/ui/UIColor.h"
#include "templates/ZVCarouselCollectionView.h"
#include "templates/ZVImageCarouselCell.h"
#include "templates/ZVPushBodyView.h"
#include "templates/ZVPushMediaView.h"

namespace zv {

namespace {

using Views = std::vector<std::shared_ptr<UIView>>;

void pin(UIView& parent, const std::vector<std::string>& formats, const ViewBindings& views) {
  for (const auto& format : formats) {
    parent.addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(format, 0, {}, views));
  }
}

template <class T>
std::shared_ptr<T> named(std::shared_ptr<T> view, const char* name) {
  view->setName(name);
  view->setTranslatesAutoresizingMaskIntoConstraints(false);
  return view;
}

NSLayoutConstraint::Ref fixed(const std::shared_ptr<UIView>& view, NSLayoutAttribute attribute,
                              double constant) {
  return NSLayoutConstraint::constraintWithItem(view, attribute, NSLayoutRelation::kEqual, nullptr,
                                                NSLayoutAttribute::kNotAnAttribute, 1, constant);
}

Views bodyView(const std::shared_ptr<TextMeasurer>& measurer) {
  auto view = std::make_shared<ZVPushBodyView>(CGRect{{0, 0}, {375, 95}});
  auto title = named(UILabel::make(measurer), "titleLabel");
  auto subTitle = named(UILabel::make(measurer), "subTitleLabel");
  auto body = named(UILabel::make(measurer), "bodyLabel");
  title->setFont(Font::systemFont(15, 600));
  subTitle->setFont(Font::systemFont(14, 600));
  body->setFont(Font::systemFont(14));
  body->setNumberOfLines(0);
  for (const auto& label : {title, subTitle, body}) view->addSubview(label);
  ViewBindings views{{"titleLabel", title}, {"subTitleLabel", subTitle}, {"bodyLabel", body}};
  pin(*view,
      {"H:|-10-[titleLabel]-10-|", "H:|-10-[subTitleLabel]-10-|", "H:|-10-[bodyLabel]-10-|",
       "V:|-10-[titleLabel]-0-[subTitleLabel]-0-[bodyLabel]-10-|"},
      views);
  auto titleHeight = fixed(title, NSLayoutAttribute::kHeight, 0);
  auto subTitleHeight = fixed(subTitle, NSLayoutAttribute::kHeight, 0);
  view->addConstraint(titleHeight);
  view->addConstraint(subTitleHeight);
  view->titleLabel = title;
  view->subTitleLabel = subTitle;
  view->bodyLabel = body;
  view->titleHeightConstraint = titleHeight;
  view->subTitleHeightConstraint = subTitleHeight;
  return {view};
}

Views mediaView() {
  auto view = std::make_shared<ZVPushMediaView>(CGRect{{0, 0}, {375, 375}});
  auto image = named(UIImageView::make(), "imageView");
  image->setContentMode(UIViewContentMode::kScaleAspectFit);
  view->addSubview(image);
  pin(*view, {"H:|-0-[imageView]-0-|", "V:|-0-[imageView]-0-|"}, {{"imageView", image}});
  view->imageView = image;
  return {view};
}

Views carouselView() {
  auto view = std::make_shared<ZVCarouselCollectionView>(CGRect{{0, 0}, {375, 200}});
  auto layout = std::make_shared<UICollectionViewFlowLayout>();
  layout->setScrollDirection(UICollectionViewScrollDirection::kHorizontal);
  layout->setMinimumLineSpacing(0);
  layout->setMinimumInteritemSpacing(0);
  auto strip = named(UICollectionView::make(CGRect{{0, 0}, {375, 200}}, layout), "collectionView");
  strip->setPagingEnabled(true);
  strip->setBackgroundColor(Color::clear());
  auto dots = named(UIPageControl::make(), "pageControl");
  dots->setBackgroundColor(Color::make(0, 0, 0, 0.25));
  dots->setPageIndicatorTintColor(Color::make(1, 1, 1, 0.5));
  dots->setCurrentPageIndicatorTintColor(Color::make(1, 1, 1, 1));
  view->addSubview(strip);
  view->addSubview(dots);
  pin(*view,
      {"H:|-0-[collectionView]-0-|", "V:|-0-[collectionView]-0-|", "V:[pageControl(20)]-6-|"},
      {{"collectionView", strip}, {"pageControl", dots}});
  view->addConstraint(NSLayoutConstraint::constraintWithItem(dots, NSLayoutAttribute::kCenterX,
                                                             NSLayoutRelation::kEqual, view,
                                                             NSLayoutAttribute::kCenterX, 1, 0));
  auto width = fixed(dots, NSLayoutAttribute::kWidth, 0);
  view->addConstraint(width);
  view->collectionView = strip;
  view->pageControl = dots;
  view->pageControlWidthConstraint = width;
  return {view};
}

Views carouselCell() {
  auto cell = std::make_shared<ZVImageCarouselCell>(CGRect{{0, 0}, {375, 200}});
  auto image = named(UIImageView::make(), "imageView");
  image->setContentMode(UIViewContentMode::kScaleAspectFill);
  image->setClipsToBounds(true);
  cell->contentView()->addSubview(image);
  pin(*cell->contentView(), {"H:|-0-[imageView]-0-|", "V:|-0-[imageView]-0-|"},
      {{"imageView", image}});
  cell->imageView = image;
  return {cell};
}

}  // namespace

void ZVInterfaceFiles::registerWithBundle(NSBundle& bundle,
                                          std::shared_ptr<TextMeasurer> measurer) {
  bundle.registerInterface("ZVPushBodyView", [measurer](void*) { return bodyView(measurer); });
  bundle.registerInterface("ZVPushMediaView", [](void*) { return mediaView(); });
  bundle.registerInterface("ZVCarouselCollectionView", [](void*) { return carouselView(); });
  bundle.registerInterface("ZVImageCarouselCell", [](void*) { return carouselCell(); });
}

}  // namespace zv

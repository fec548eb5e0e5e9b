#include <gtest/gtest.h>

#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/UIImage.h"
#include "platform/text/FixedAdvanceTextMeasurer.h"
#include "platform/ui/NSBundle.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "platform/ui/RunLoop.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UIImageView.h"
#include "platform/ui/UILabel.h"
#include "platform/ui/UIPageControl.h"
#include "zentrova/UIViewController.h"

namespace zv {

namespace {

// Labels measured with 10 px per character and 24 px lines (20 px font).
TEST(ContentViewsTest, LabelSizesItselfAndWrapsAtItsLaidOutWidth) {
  auto measurer = std::make_shared<FixedAdvanceTextMeasurer>();
  struct Case {
    const char* text;
    int lines;
    CGFloat width;  // given to the label by a required constraint (0: none)
    CGSize size;
  };
  const Case cases[] = {
      {"hello world", 1, 0, {110, 24}},
      {"hello world", 0, 60, {60, 48}},
      {"one two three four", 0, 50, {50, 96}},
      {"one two three four", 2, 50, {50, 48}},
      {"", 1, 0, {0, 0}},
  };
  for (const auto& c : cases) {
    auto root = UIView::make(CGRect::make(0, 0, c.width > 0 ? c.width : 300, 300));
    auto label = UILabel::make(measurer);
    label->setFont(Font::systemFont(20));
    label->setText(c.text);
    label->setNumberOfLines(c.lines);
    label->setTranslatesAutoresizingMaskIntoConstraints(false);
    root->addSubview(label);
    ViewBindings views{{"l", label}};
    root->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(
        c.width > 0 ? "H:|[l(w)]|" : "H:|[l]", 0, {{"w", c.width}}, views));
    root->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat("V:|[l]", 0, {}, views));
    root->layoutIfNeeded();
    EXPECT_EQ(label->frame().size, c.size) << c.text << " " << c.lines;
  }
  auto label = UILabel::make(nullptr);
  label->setText("no measurer");
  EXPECT_EQ(label->intrinsicContentSize(),
            (CGSize{UIView::kNoIntrinsicMetric, UIView::kNoIntrinsicMetric}));
}

TEST(ContentViewsTest, ImageViewShowsTheFrameDueAtTheRunLoopsTime) {
  auto loop = std::make_shared<ManualRunLoop>();
  auto previous = RunLoop::setCurrent(loop);
  auto view = UIImageView::make();
  view->setAnimationImages(std::vector<std::shared_ptr<UIImage>>(
      4, UIImage::imageWithCGImage(CGImage::withPixels(PixelBuffer::make(1, 1)))));
  loop->advance(1);
  view->startAnimating();
  struct Case {
    double duration, at;
    size_t frame;
  };
  for (const auto& c : {Case{0.4, 0, 0}, Case{0.4, 0.1, 1}, Case{0.4, 0.35, 3}, Case{0.4, 0.4, 0},
                        Case{0.4, 1.25, 0}, Case{0, 1 / 30.0, 1}, Case{0, 5 / 30.0, 1}}) {
    view->setAnimationDuration(c.duration);
    EXPECT_EQ(view->animationFrameIndexAt(1 + c.at), c.frame) << c.duration << " " << c.at;
  }
  view->stopAnimating();
  EXPECT_EQ(view->animationFrameIndex(), 0u);
  RunLoop::setCurrent(previous);
}

TEST(ContentViewsTest, PageControlAndStyledColours) {
  auto dots = UIPageControl::make();
  dots->setNumberOfPages(3);
  dots->setCurrentPage(7);
  EXPECT_EQ(dots->currentPage(), 2);
  dots->setHidesForSinglePage(true);
  dots->setNumberOfPages(1);
  EXPECT_EQ(dots->currentPage(), 0);
  EXPECT_FALSE(dots->showsDots());

  const auto& system = UIColor::systemBackgroundColor();
  EXPECT_EQ(*UIColor::resolve(system, {UIUserInterfaceStyle::kDark}), *UIColor::blackColor());
  EXPECT_EQ(*UIColor::resolve(system, {}), *UIColor::whiteColor());
  auto parent = UIView::make();
  auto child = UIView::make();
  parent->addSubview(child);
  parent->setTraitCollection(UITraitCollection{UIUserInterfaceStyle::kDark});
  EXPECT_TRUE(child->traitCollection().isDark());
}

TEST(ContentViewsTest, BundleControllerAndContext) {
  auto& bundle = NSBundle::mainBundle();
  bundle.setInfoDictionary(
      Value::parse(R"({"UNNotificationExtensionDefaultContentHidden": true})"));
  EXPECT_TRUE(
      bundle.objectForInfoDictionaryKey("UNNotificationExtensionDefaultContentHidden").isBool());
  EXPECT_TRUE(bundle.objectForInfoDictionaryKey("missing").isNil());
  int owner = 0;
  bundle.registerInterface("TwoViews", [](void* o) {
    ++*static_cast<int*>(o);
    return std::vector<std::shared_ptr<UIView>>{UIView::make(), UIView::make()};
  });
  EXPECT_EQ(bundle.loadNibNamed("TwoViews", &owner).size(), 2u);
  EXPECT_EQ(owner, 1);
  EXPECT_TRUE(bundle.loadNibNamed("Unknown", &owner).empty());
  bundle.setInfoDictionary({});

  UIViewController controller;
  controller.setTraitCollection({UIUserInterfaceStyle::kDark});
  controller.setView(UIView::make(CGRect::make(0, 0, 375, 0)));
  EXPECT_TRUE(controller.view()->traitCollection().isDark());
  int opened = 0;
  controller.extensionContext()->setDefaultActionObserver([&] { ++opened; });
  controller.extensionContext()->performNotificationDefaultAction();
  EXPECT_EQ(opened, 1);
}

}  // namespace
}  // namespace zv

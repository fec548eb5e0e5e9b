#include "platform/ui/UIScreen.h"
#include "platform/ui/UITapGestureRecognizer.h"
#include "templates/TemplateFixture.h"
#include "templates/ZVCarouselCollectionView.h"
#include "zentrova/Url.h"
#include "zentrova/UserDefaults.h"

namespace zvtest {
namespace {

namespace json = boost::json;

class ZVCarouselCollectionViewTest : public TemplateFixture {
 protected:
  // Shows a carousel of cards with images of the given heights at width 375 (0: no attachment).
  std::shared_ptr<zv::ZVCarouselCollectionView> carousel(const std::vector<int>& heights,
                                                         bool autoStart = false) {
    std::vector<std::string> urls;
    std::map<std::string, std::string> files;
    for (size_t i = 0; i < heights.size(); ++i) {
      urls.push_back("https://cdn.example.com/card" + std::to_string(i) + ".png");
      if (heights[i] > 0) files[urls.back()] = png(375, heights[i]);
    }
    controller = show(notification(richPayload(urls, "imageCarousel", autoStart), files));
    auto templateView = controller->view()->subviews().front()->subviews().front();
    return std::dynamic_pointer_cast<zv::ZVCarouselCollectionView>(templateView);
  }
  std::shared_ptr<zv::UIViewController> controller;
};

TEST_F(ZVCarouselCollectionViewTest, PagesAreAsTallAsTheTallestCardUpTo70PercentOfTheScreen) {
  struct Case {
    std::vector<int> heights;
    double screen;
    std::int64_t imageHeight;
    size_t items;
    double indicatorWidth;
  } cases[] = {
      {{120, 310, 240}, 812, 310, 3, 180},
      {{450}, 568, 397, 1, 60},
      {{120, 0, 240, 0}, 812, 240, 2, 120},  // cards without an attachment are left out
      {{0, 0}, 812, 0, 0, 0},
  };
  for (const auto& c : cases) {
    zv::UIScreen::mainScreen().setBounds(zv::CGRect::make(0, 0, 375, c.screen));
    auto view = carousel(c.heights);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->imageHeight, c.imageHeight);
    EXPECT_EQ(view->frame().size.height, c.imageHeight);
    EXPECT_EQ(view->cardsArray.size(), c.items);
    EXPECT_EQ(view->pageControlWidthConstraint.lock()->constant(), c.indicatorWidth);
    EXPECT_EQ(view->pageControl.lock()->showsDots(), c.items > 1);
    auto strip = view->collectionView.lock();
    if (c.items > 0) {
      EXPECT_EQ(strip->itemFrame(0).size, (zv::CGSize{375, double(c.imageHeight)}));
    }
  }
}

TEST_F(ZVCarouselCollectionViewTest, AutomaticModePagesEveryThreeSeconds) {
  auto view = carousel({100, 100, 100}, /*autoStart=*/true);
  auto strip = view->collectionView.lock();
  EXPECT_FALSE(strip->isScrollEnabled());
  std::vector<std::int64_t> pages;
  for (int tick = 0; tick < 5; ++tick) {
    loop->advance(3.0);
    pages.push_back(view->currentCardIndex);
    EXPECT_EQ(view->pageControl.lock()->currentPage(), view->currentCardIndex);
  }
  EXPECT_EQ(pages, (std::vector<std::int64_t>{1, 2, 0, 1, 2}));
  loop->advance(0.1);  // the scroll's animation ends
  EXPECT_EQ(strip->contentOffset().x, 750);
  strip->swipeToPage(0);  // swiping is off
  EXPECT_EQ(view->currentCardIndex, 2);

  // Once the carousel leaves the view tree, its timer stops.
  controller->view()->subviews().front()->removeFromSuperview();
  loop->advance(3.0);
  loop->advance(3.0);
  EXPECT_EQ(view->currentCardIndex, 2);
}

TEST_F(ZVCarouselCollectionViewTest, ManualSwipesAndTapsOnCards) {
  auto view = carousel({100, 100, 100});
  auto strip = view->collectionView.lock();
  struct Swipe {
    long page;
    std::int64_t index;
  } swipes[] = {{2, 2}, {1, 1}};
  for (const auto& s : swipes) {
    strip->swipeToPage(s.page);
    loop->advance(1.0);
    EXPECT_EQ(view->currentCardIndex, s.index);
    EXPECT_EQ(view->pageControl.lock()->currentPage(), s.index);
  }
  loop->advance(9.0);
  EXPECT_EQ(view->currentCardIndex, 1) << "no timer in manual mode";

  // A tap on the second page stores the card and the campaign, and opens the application.
  auto hit = zv::UITapGestureRecognizer::deliverTap(controller->view(), {100, 50});
  ASSERT_TRUE(hit);
  EXPECT_EQ(controller->extensionContext()->defaultActionCount(), 1);
  auto stored = zv::UserDefaults::initWithSuiteName("group.templates", dir.path() / "store")
                    ->objectForKey("zov_push_template_click_info");
  EXPECT_EQ(stored.json(), (json::value(json::object{{"card_id", 101}, {"campaign_id", "cmp-9"}})));
}

TEST_F(ZVCarouselCollectionViewTest, EveryFileAccessStartedIsStopped) {
  auto before = zv::Url::securityScopedAccessCounts();
  auto view = carousel({100, 200});
  loop->advance(1);
  auto after = zv::Url::securityScopedAccessCounts();
  EXPECT_GE(after.granted - before.granted, 3) << "measured twice, shown at least once";
  EXPECT_EQ(after.granted - before.granted, after.stopped - before.stopped);
}

}  // namespace
}  // namespace zvtest

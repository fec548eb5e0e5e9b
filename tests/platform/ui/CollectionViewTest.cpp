#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/ui/NSTimer.h"
#include "platform/ui/RunLoop.h"
#include "platform/ui/UICollectionView.h"
#include "platform/ui/UITapGestureRecognizer.h"

namespace zv {
namespace {

// A carousel-like source: `count` pages, each as wide as the collection view.
struct Pages : UICollectionViewDataSource, UICollectionViewDelegate {
  long count = 4;
  int cellsBuilt = 0;
  std::vector<std::string> events;
  long numberOfItemsInSection(UICollectionView&, long) override { return count; }
  std::shared_ptr<UICollectionViewCell> cellForItemAtIndexPath(UICollectionView& view,
                                                               NSIndexPath path) override {
    return view.dequeueReusableCell("page", path);
  }
  std::optional<CGSize> sizeForItemAtIndexPath(UICollectionView& view,
                                               const UICollectionViewFlowLayout&,
                                               NSIndexPath) override {
    return view.frame().size;
  }
  void willDisplayCell(UICollectionView&, UICollectionViewCell&, NSIndexPath path) override {
    events.push_back("show " + std::to_string(path.item));
  }
  void didSelectItemAtIndexPath(UICollectionView&, NSIndexPath path) override {
    events.push_back("select " + std::to_string(path.item));
  }
  void scrollViewDidEndDecelerating(UICollectionView& view) override {
    events.push_back("end " + std::to_string(view.currentPage()));
  }
};

struct CollectionViewTest : ::testing::Test {
  std::shared_ptr<ManualRunLoop> loop = std::make_shared<ManualRunLoop>();
  std::shared_ptr<RunLoop> previous = RunLoop::setCurrent(loop);
  std::shared_ptr<Pages> pages = std::make_shared<Pages>();
  std::shared_ptr<UICollectionView> view = UICollectionView::make(CGRect::make(0, 0, 300, 200));
  CollectionViewTest() {
    view->registerCell("page", [this] {
      ++pages->cellsBuilt;
      return std::make_shared<UICollectionViewCell>();
    });
    view->setDataSource(pages);
    view->setDelegate(pages);
    view->setPagingEnabled(true);
    view->layoutIfNeeded();
  }
  ~CollectionViewTest() override { RunLoop::setCurrent(previous); }
};

TEST_F(CollectionViewTest, ScrollsAnimatedOverItsDurationAndReusesCells) {
  EXPECT_EQ(pages->events, (std::vector<std::string>{"show 0"}));
  EXPECT_EQ(view->contentSize(), (CGSize{1200, 200}));

  view->scrollToItem({1, 0}, UICollectionViewScrollPosition::kCenteredHorizontally, true);
  EXPECT_EQ(pages->events.back(), "show 1");  // shown as the scroll starts
  loop->advance(UICollectionView::kScrollAnimationDuration / 2);
  EXPECT_DOUBLE_EQ(view->contentOffset().x, 150);  // half way, eased
  view->layoutIfNeeded();                          // a drawing pass places the cells
  EXPECT_EQ(view->cellForItem(1)->frame().origin.x, 150);
  loop->advance(UICollectionView::kScrollAnimationDuration / 2);
  EXPECT_EQ(view->contentOffset().x, 300);
  EXPECT_EQ(view->visibleCells().size(), 1u);  // page 0 went back to the pool

  view->scrollToItem({2, 0}, UICollectionViewScrollPosition::kCenteredHorizontally, false);
  view->scrollToItem({3, 0}, UICollectionViewScrollPosition::kCenteredHorizontally, false);
  EXPECT_EQ(view->contentOffset().x, 900);
  EXPECT_EQ(pages->cellsBuilt, 2);  // two cells serve four pages
  EXPECT_EQ(pages->events, (std::vector<std::string>{"show 0", "show 1", "show 2", "show 3"}));
}

TEST_F(CollectionViewTest, SwipePagesAndTapSelects) {
  struct Case {
    bool scrollEnabled;
    long page;
    std::vector<std::string> events;
  };
  const Case cases[] = {
      {true, 2, {"show 1", "show 2", "end 2"}},
      {false, 0, {}},
  };
  for (const auto& c : cases) {
    pages->events.clear();
    view->setScrollEnabled(c.scrollEnabled);
    view->swipeToPage(c.page);
    loop->advance(1);
    EXPECT_EQ(pages->events, c.events);
  }
  pages->events.clear();
  auto root = UIView::make(CGRect::make(0, 0, 300, 400));
  root->addSubview(view);
  view->setFrame(CGRect::make(0, 100, 300, 200));
  UITapGestureRecognizer::deliverTap(root, {10, 150});
  UITapGestureRecognizer::deliverTap(root, {10, 350});  // below the collection view
  EXPECT_EQ(pages->events, (std::vector<std::string>{"select 2"}));
}

}  // namespace
}  // namespace zv

#include <gtest/gtest.h>

#include "platform/ui/UITapGestureRecognizer.h"
#include "zentrova/UIView.h"

namespace zv {
namespace {

TEST(TapTest, TapReachesTheDeepestVisibleViewWithARecogniser) {
  auto root = UIView::make(CGRect::make(0, 0, 200, 200));
  auto panel = UIView::make(CGRect::make(10, 10, 100, 100));
  auto inner = UIView::make(CGRect::make(10, 10, 50, 50));   // no recogniser: its parent gets it
  auto hidden = UIView::make(CGRect::make(0, 0, 100, 100));  // on top but hidden
  hidden->setHidden(true);
  root->addSubview(panel);
  panel->addSubview(inner);
  panel->addSubview(hidden);
  std::string got;
  CGPoint where;
  root->addGestureRecognizer(UITapGestureRecognizer::make([&](auto&) { got = "root"; }));
  panel->addGestureRecognizer(UITapGestureRecognizer::make([&](UITapGestureRecognizer& r) {
    got = "panel";
    where = r.locationInView(inner.get());
  }));
  hidden->addGestureRecognizer(UITapGestureRecognizer::make([&](auto&) { got = "hidden"; }));
  struct Case {
    CGPoint point;
    const char* expected;
  };
  for (const auto& c : {Case{{30, 30}, "panel"}, Case{{150, 150}, "root"}, Case{{110, 50}, "root"},
                        Case{{250, 10}, ""}}) {
    got.clear();
    UITapGestureRecognizer::deliverTap(root, c.point);
    EXPECT_EQ(got, c.expected) << c.point.x << "," << c.point.y;
  }
  UITapGestureRecognizer::deliverTap(root, {35, 40});
  EXPECT_EQ(where, (CGPoint{15, 20}));
}

}  // namespace
}  // namespace zv

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/foundation/Log.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/LayoutEngine.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "zentrova/UIView.h"

namespace zv {
namespace {

struct Tree {
  std::shared_ptr<UIView> root;
  ViewBindings views;
  explicit Tree(CGRect frame, std::vector<std::string> names) : root(UIView::make(frame)) {
    for (const auto& n : names) {
      auto v = UIView::make();
      v->setTranslatesAutoresizingMaskIntoConstraints(false);
      root->addSubview(v);
      views[n] = v;
    }
  }
  void add(const std::vector<std::string>& formats) {
    for (const auto& f : formats)
      root->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(f, 0, {}, views));
  }
};

TEST(LayoutEngineTest, FramesAfterLayout) {
  struct Case {
    const char* name;
    std::vector<std::string> formats;
    std::map<std::string, CGRect> frames;
  };
  const Case cases[] = {
      {"chain with standard spacing",
       {"H:|-[a(40)]-[b(60)]", "V:|-[a(10)]", "V:|-[b(10)]"},
       {{"a", CGRect::make(20, 20, 40, 10)}, {"b", CGRect::make(68, 20, 60, 10)}}},
      {"flush chain filling the superview",
       {"H:|[a(100)][b]|", "V:|[a]|", "V:|[b]|"},
       {{"a", CGRect::make(0, 0, 100, 200)}, {"b", CGRect::make(100, 0, 200, 200)}}},
      {"equal widths share the space",
       {"H:|-10-[a]-10-[b(==a)]-10-|", "V:|[a(5)]", "V:|[b(5)]"},
       {{"a", CGRect::make(10, 0, 135, 5)}, {"b", CGRect::make(155, 0, 135, 5)}}},
      {"a weaker width yields to a required one",
       {"H:|[a(500@750)]-(>=0)-|", "H:[a(<=120)]", "V:|[a(5)]", "H:|[b(50)]", "V:[a][b(5)]"},
       {{"a", CGRect::make(0, 0, 120, 5)}, {"b", CGRect::make(0, 5, 50, 5)}}},
      {"stronger priority wins over weaker",
       {"H:|[a(100@250)]", "H:[a(80@750)]", "V:|[a(1)]", "H:|[b(1)]", "V:|[b(1)]"},
       {{"a", CGRect::make(0, 0, 80, 1)}}},
      {"inequalities keep their bounds",
       {"H:|-(>=30)-[a(>=70,<=70@500)]-(>=200)-|", "V:|-(>=0)-[a(==20)]-(>=180)-|", "H:|[b(1)]",
        "V:|[b(1)]"},
       {{"a", CGRect::make(30, 0, 70, 20)}}},
  };
  for (const auto& c : cases) {
    Tree t(CGRect::make(0, 0, 300, 200), {"a", "b"});
    t.add(c.formats);
    t.root->layoutIfNeeded();
    for (const auto& [name, frame] : c.frames) {
      CGRect got = t.views[name]->frame();
      EXPECT_EQ(got, frame) << c.name << ": " << name << " = " << got.origin.x << ","
                            << got.origin.y << "," << got.size.width << "," << got.size.height;
    }
  }
}

// The container of a notification: a template and a body stacked at fixed heights; the numbers
// come printed with %f, six decimals.
TEST(LayoutEngineTest, ContainerTakesItsContentSize) {
  for (bool bodyOnTop : {true, false}) {
    auto container = UIView::make(CGRect::make(0, 0, 375, 20));
    auto templ = UIView::make(CGRect::make(0, 0, 375, 200));
    auto body = UIView::make(CGRect::make(0, 200, 375, 66.5));
    container->addSubview(templ);
    container->addSubview(body);
    for (auto& v : {container, templ, body}) v->setTranslatesAutoresizingMaskIntoConstraints(false);
    ViewBindings views{
        {"containerView", container}, {"templateView", templ}, {"pushMsgBodyView", body}};
    const std::vector<std::string> formats = {
        "H:|-0-[templateView(375.000000)]-0-|", "H:|-0-[pushMsgBodyView(375.000000)]-0-|",
        bodyOnTop ? "V:|-0-[pushMsgBodyView(66.500000)]-0-[templateView(200.000000)]-0-|"
                  : "V:|-0-[templateView(200.000000)]-0-[pushMsgBodyView(66.500000)]-0-|"};
    for (const auto& f : formats)
      container->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(f, 0, {}, views));
    templ->layoutIfNeeded();
    body->layoutIfNeeded();
    container->layoutIfNeeded();
    EXPECT_EQ(container->frame(), CGRect::make(0, 0, 375, 266.5));
    EXPECT_EQ(templ->frame(), CGRect::make(0, bodyOnTop ? 66.5 : 0, 375, 200));
    EXPECT_EQ(body->frame(), CGRect::make(0, bodyOnTop ? 0 : 200, 375, 66.5));
    EXPECT_EQ(container->constraintFormats(), formats);

    // The controller's view pinned to the container follows it.
    auto controllerView = UIView::make(CGRect::make(0, 0, 375, 812));
    controllerView->setTranslatesAutoresizingMaskIntoConstraints(false);
    controllerView->addSubview(container);
    ViewBindings outer{{"containerView", container}};
    for (const char* f :
         {"H:|-0-[containerView(375.000000)]-0-|", "V:|-0-[containerView(266.500000)]-0-|"})
      controllerView->addConstraints(
          NSLayoutConstraint::constraintsWithVisualFormat(f, 0, {}, outer));
    controllerView->layoutIfNeeded();
    EXPECT_EQ(controllerView->frame(), CGRect::make(0, 0, 375, 266.5));
    EXPECT_EQ(controllerView->layer()->frame(), controllerView->frame());
  }
}

TEST(LayoutEngineTest, ConflictIsBrokenAndLoggedOnce) {
  std::vector<std::string> logged;
  log::setSystemReceiver([&](const std::string& m) { logged.push_back(m); });
  Tree t(CGRect::make(0, 0, 300, 200), {"a", "b"});
  t.add({"H:|[a(100)]", "H:[a(200)]", "V:|[a(10)]", "H:|[b(5)]", "V:|[b(5)]"});
  t.root->layoutIfNeeded();
  t.root->layoutIfNeeded();
  log::setSystemReceiver({});
  EXPECT_EQ(t.views["a"]->frame(), CGRect::make(0, 0, 100, 10));
  ASSERT_EQ(logged.size(), 1u);
  EXPECT_NE(logged[0].find("Unable to simultaneously satisfy constraints"), std::string::npos);
  EXPECT_NE(logged[0].find("H:|[a(100)]"), std::string::npos);  // involved
  EXPECT_NE(logged[0].find("H:[a(200)]"), std::string::npos);   // broken
}

TEST(LayoutEngineTest, ConstantChangeResolvesIncrementally) {
  Tree t(CGRect::make(0, 0, 300, 200), {"a", "b"});
  auto height = NSLayoutConstraint::constraintsWithVisualFormat("V:[a(10)]", 0, {}, t.views);
  t.root->addConstraints(height);
  t.add({"V:|[a]-[b(5)]", "H:|[a(5)]", "H:|[b(5)]"});
  t.root->layoutIfNeeded();
  size_t solverSize = t.root->layoutEngine()->solverConstraintCount();
  height[0]->setConstant(25);
  t.root->layoutIfNeeded();
  EXPECT_EQ(t.views["b"]->frame(), CGRect::make(0, 33, 5, 5));
  EXPECT_EQ(t.root->layoutEngine()->solverConstraintCount(), solverSize);

  // Constants that turn an inequality around shift through the rows and pivot back to feasible.
  auto gap = NSLayoutConstraint::constraintsWithVisualFormat("V:[b]-(>=20)-|", 0, {}, t.views);
  t.root->addConstraints(gap);
  t.root->layoutIfNeeded();
  for (double c : {190.0, 5.0, 120.0}) {
    gap[0]->setConstant(c);
    t.root->layoutIfNeeded();
    EXPECT_LE(t.views["b"]->frame().maxY(), t.root->frame().height() - c + 1e-9) << c;
    EXPECT_EQ(t.views["b"]->frame().origin.y, 33) << c;  // b is pinned below a
  }

  // A view removed while constrained drops out of the layout instead of failing it.
  t.views["a"]->removeFromSuperview();
  t.root->layoutIfNeeded();
  EXPECT_EQ(t.views["b"]->frame().size, (CGSize{5, 5}));
}

TEST(LayoutEngineTest, ManyConstraintsAndAmbiguityStillLayOut) {
  auto root = UIView::make(CGRect::make(0, 0, 100, 100));
  ViewBindings views;
  std::string chain = "H:|";  // closed by "|" below: the root must grow to hold the chain
  for (int i = 0; i < 2500; ++i) {
    auto v = UIView::make();
    v->setTranslatesAutoresizingMaskIntoConstraints(false);
    root->addSubview(v);
    views["v" + std::to_string(i)] = v;
    chain += "[v" + std::to_string(i) + "(>=1)]";
  }
  root->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(chain + "|", 0, {}, views));
  root->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat("V:|[v0(2)]", 0, {}, views));
  root->layoutIfNeeded();  // vertical positions of most views are ambiguous
  EXPECT_GE(root->frame().size.width, 2500);
  EXPECT_EQ(views["v0"]->frame().size.height, 2);
}

}  // namespace
}  // namespace zv

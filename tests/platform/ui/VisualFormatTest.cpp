#include <gtest/gtest.h>

#include "platform/ui/NSLayoutConstraint.h"
#include "zentrova/Exception.h"
#include "zentrova/UIView.h"

namespace zv {
namespace {

using A = NSLayoutAttribute;
using R = NSLayoutRelation;

struct Fixture {
  std::shared_ptr<UIView> root = UIView::make(CGRect::make(0, 0, 300, 200));
  std::shared_ptr<UIView> a = UIView::make();
  std::shared_ptr<UIView> b = UIView::make();
  ViewBindings views{{"a", a}, {"b", b}};
  LayoutMetrics metrics{{"m", 12}, {"p", 750}};
  Fixture() {
    root->addSubview(a);
    root->addSubview(b);
  }
  // "first.attr REL second.attr c @p" with view names.
  std::string describe(const NSLayoutConstraint& c) const {
    auto name = [&](const std::shared_ptr<UIView>& v) {
      return v == a ? "a" : v == b ? "b" : v == root ? "|" : "?";
    };
    static const char* attrs[] = {"-",        "left",  "right",  "top",     "bottom", "leading",
                                  "trailing", "width", "height", "centerX", "centerY"};
    std::string s = std::string(name(c.firstItem())) + "." + attrs[int(c.firstAttribute())];
    s += c.relation() == R::kEqual ? " == " : c.relation() == R::kLessThanOrEqual ? " <= " : " >= ";
    if (c.secondItem())
      s += std::string(name(c.secondItem())) + "." + attrs[int(c.secondAttribute())] + " ";
    char num[32];
    snprintf(num, sizeof num, "%g", c.constant());
    s += num;
    if (c.priority() != 1000) s += " @" + std::to_string(int(c.priority()));
    return s;
  }
};

TEST(VisualFormatTest, ValidFormatsGiveTheirConstraints) {
  struct Case {
    const char* format;
    NSLayoutFormatOptions options;
    std::vector<std::string> constraints;
  };
  const Case cases[] = {
      {"[a]", 0, {}},
      {"|[a]|", 0, {"a.leading == |.leading 0", "|.trailing == a.trailing 0"}},
      {"H:|-[a]-|", 0, {"a.leading == |.leading 20", "|.trailing == a.trailing 20"}},
      {"V:|-m-[a]", 0, {"a.top == |.top 12"}},
      {"[a]-[b]", 0, {"b.leading == a.trailing 8"}},
      {"[a][b]", 0, {"b.leading == a.trailing 0"}},
      {"V:[a]-(-4.5)-[b]", 0, {"b.top == a.bottom -4.5"}},
      {"[a(50)]", 0, {"a.width == 50"}},
      {"V:[a(>=50,<=100@750)]", 0, {"a.height >= 50", "a.height <= 100 @750"}},
      {"[a(==b)]", 0, {"a.width == b.width 0"}},
      {"[a(<=b@p)]", 0, {"a.width <= b.width 0 @750"}},
      {"[a]-(>=m@250,<=40)-[b]",
       0,
       {"b.leading >= a.trailing 12 @250", "b.leading <= a.trailing 40"}},
      {"|-(0)-[a(20.000000)]-0-|",
       0,
       {"a.width == 20", "a.leading == |.leading 0", "|.trailing == a.trailing 0"}},
      {"H: | - [ a ( >= 50 , <=m ) ] -|",
       0,
       {"a.width >= 50", "a.width <= 12", "a.leading == |.leading 20",
        "|.trailing == a.trailing 20"}},
      {"[a]-[b]", NSLayoutFormatAlignAllTop, {"b.leading == a.trailing 8", "a.top == b.top 0"}},
  };
  for (const auto& c : cases) {
    Fixture f;
    auto constraints =
        NSLayoutConstraint::constraintsWithVisualFormat(c.format, c.options, f.metrics, f.views);
    std::vector<std::string> got;
    for (const auto& k : constraints) {
      got.push_back(f.describe(*k));
      EXPECT_EQ(k->visualFormat(), c.format);
    }
    EXPECT_EQ(got, c.constraints) << c.format;
  }
}

TEST(VisualFormatTest, ErrorsSayWhereAndWhy) {
  struct Case {
    const char* format;
    const char* reason;
  };
  const Case cases[] = {
      {"", "Expected a view"},
      {"H:|-[a", "Expected a ']' to close the view"},
      {"[c]", "c is not a key in the views dictionary."},
      {"[a]-x-[b]", "x is not a key in the metrics dictionary."},
      {"[a(==x)]", "x is not a key in the views or metrics dictionaries."},
      {"[a]-", "Expected a number or a metric name"},
      {"[a]-(8-[b]", "Expected ')' to close the predicate list"},
      {"[a(50@0)]", "A priority must be greater than 0 and at most 1000"},
      {"[a(50@1001)]", "A priority must be greater than 0 and at most 1000"},
      {"[a]|[b]", "Expected the end of the format after '|'"},
      {"[a]x", "Expected a view or '|'"},
      {"[a(=50)]", "Expected '==' as a relation"},
      {"[a b]", "Expected a ']' to close the view"},
      {"[a]", nullptr},
  };
  for (const auto& c : cases) {
    Fixture f;
    if (!c.reason) {
      auto lone = UIView::make();
      EXPECT_THROW(NSLayoutConstraint::constraintsWithVisualFormat("|[x]", 0, {}, {{"x", lone}}),
                   Exception);
      continue;
    }
    try {
      NSLayoutConstraint::constraintsWithVisualFormat(c.format, 0, f.metrics, f.views);
      ADD_FAILURE() << c.format << " parsed";
    } catch (const Exception& e) {
      EXPECT_NE(e.reason().find(c.reason), std::string::npos) << c.format << ": " << e.reason();
      EXPECT_NE(e.reason().find(std::string("\n") + c.format + "\n"), std::string::npos);
    }
  }
}

TEST(VisualFormatTest, NonFiniteConstantsAreRejected) {
  Fixture f;
  auto c = NSLayoutConstraint::constraintWithItem(f.a, A::kWidth, R::kEqual, nullptr,
                                                  A::kNotAnAttribute, 1, 10);
  EXPECT_THROW(c->setConstant(std::nan("")), Exception);
  EXPECT_THROW(c->setConstant(INFINITY), Exception);
  EXPECT_THROW(NSLayoutConstraint::constraintsWithVisualFormat("[a(m)]", 0, {{"m", NAN}}, f.views),
               Exception);
}

}  // namespace
}  // namespace zv

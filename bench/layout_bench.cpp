// Layout of a chain of N views, about three constraints each (leading spacing to the previous
// view, width, height): from scratch, and again after one constant changed (the incremental
// re-solve). Compare BM_Relayout with BM_FullLayout at the same N.
#include <benchmark/benchmark.h>

#include "platform/ui/NSLayoutConstraint.h"
#include "zentrova/UIView.h"

namespace {

using zv::NSLayoutAttribute;
using zv::NSLayoutConstraint;
using zv::NSLayoutRelation;
using zv::UIView;

struct Chain {
  std::shared_ptr<UIView> root = UIView::make(zv::CGRect::make(0, 0, 375, 100));
  NSLayoutConstraint::Ref firstWidth;

  explicit Chain(int n) {
    std::shared_ptr<UIView> previous;
    for (int i = 0; i < n; ++i) {
      auto v = UIView::make();
      v->setTranslatesAutoresizingMaskIntoConstraints(false);
      root->addSubview(v);
      auto leading = previous ? NSLayoutConstraint::constraintWithItem(
                                    v, NSLayoutAttribute::kLeading, NSLayoutRelation::kEqual,
                                    previous, NSLayoutAttribute::kTrailing, 1, 8)
                              : NSLayoutConstraint::constraintWithItem(
                                    v, NSLayoutAttribute::kLeading, NSLayoutRelation::kEqual, root,
                                    NSLayoutAttribute::kLeading, 1, 20);
      auto width = NSLayoutConstraint::constraintWithItem(
          v, NSLayoutAttribute::kWidth, NSLayoutRelation::kEqual, nullptr,
          NSLayoutAttribute::kNotAnAttribute, 1, 10);
      auto height = NSLayoutConstraint::constraintWithItem(
          v, NSLayoutAttribute::kHeight, NSLayoutRelation::kGreaterThanOrEqual, nullptr,
          NSLayoutAttribute::kNotAnAttribute, 1, 10);
      root->addConstraints({leading, width, height});
      if (!firstWidth) firstWidth = width;
      previous = v;
    }
  }
};

void BM_FullLayout(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto chain = std::make_unique<Chain>(static_cast<int>(state.range(0)));
    state.ResumeTiming();
    chain->root->layoutIfNeeded();
    benchmark::DoNotOptimize(chain->root->frame());
    state.PauseTiming();
    chain.reset();
    state.ResumeTiming();
  }
  state.SetComplexityN(state.range(0));
}

void BM_Relayout(benchmark::State& state) {
  Chain chain(static_cast<int>(state.range(0)));
  chain.root->layoutIfNeeded();
  double constant = 10;
  for (auto _ : state) {
    constant = constant == 10 ? 25 : 10;
    chain.firstWidth->setConstant(constant);
    chain.root->layoutIfNeeded();
    benchmark::DoNotOptimize(chain.root->subviews().back()->frame());
  }
}

}  // namespace

BENCHMARK(BM_FullLayout)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond)->Complexity();
BENCHMARK(BM_Relayout)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

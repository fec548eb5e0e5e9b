// A visual format string (any bytes) with two sibling views and a metric: it parses into
// constraints that the layout solves, or raises zv::Exception naming the problem.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "zentrova/Exception.h"
#include "zentrova/UIView.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto root = zv::UIView::make(zv::CGRect{{0, 0}, {375, 600}});
  auto a = zv::UIView::make(), b = zv::UIView::make();
  root->addSubview(a);
  root->addSubview(b);
  try {
    auto constraints = zv::NSLayoutConstraint::constraintsWithVisualFormat(
        zvfuzz::text(data, size), 0, {{"m", 10}}, {{"a", a}, {"b", b}});
    root->addConstraints(constraints);
    root->layoutIfNeeded();
  } catch (const zv::Exception& e) {
    ZV_FUZZ_CHECK(!e.reason().empty());
  }
  return 0;
}

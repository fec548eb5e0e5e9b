#include "platform/ui/NSLayoutConstraint.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "platform/ui/VisualFormatParser.h"
#include "zentrova/Exception.h"
#include "zentrova/UIView.h"

namespace zv {

namespace {

void checkFinite(double value, const char* what) {
  if (!std::isfinite(value))
    Exception::raise(Exception::kInvalidArgument,
                     fmt::format("A constraint's {} must be a finite number, not {}", what, value));
}

const char* attributeName(NSLayoutAttribute a) {
  static const char* const kNames[] = {
      "notAnAttribute", "left",   "right",   "top",     "bottom",       "leading",      "trailing",
      "width",          "height", "centerX", "centerY", "lastBaseline", "firstBaseline"};
  return kNames[static_cast<int>(a)];
}

std::string viewName(const std::shared_ptr<UIView>& view) {
  if (!view) return "(gone)";
  return fmt::format("{}:{}", view->className(), static_cast<const void*>(view.get()));
}

}  // namespace

NSLayoutConstraint::Ref NSLayoutConstraint::constraintWithItem(const std::shared_ptr<UIView>& view1,
                                                               NSLayoutAttribute attr1,
                                                               NSLayoutRelation relation,
                                                               const std::shared_ptr<UIView>& view2,
                                                               NSLayoutAttribute attr2,
                                                               double multiplier, double constant) {
  checkFinite(multiplier, "multiplier");
  checkFinite(constant, "constant");
  if (!view1) Exception::raise(Exception::kInvalidArgument, "A constraint needs a first item");
  auto c = std::make_shared<NSLayoutConstraint>();
  c->first_ = view1;
  c->firstAttribute_ = attr1;
  c->relation_ = relation;
  c->second_ = view2;
  c->secondAttribute_ = view2 ? attr2 : NSLayoutAttribute::kNotAnAttribute;
  c->multiplier_ = multiplier;
  c->constant_ = constant;
  return c;
}

std::vector<NSLayoutConstraint::Ref> NSLayoutConstraint::constraintsWithVisualFormat(
    const std::string& format, NSLayoutFormatOptions options, const LayoutMetrics& metrics,
    const ViewBindings& views) {
  return VisualFormatParser(format, options, metrics, views).parse();
}

void NSLayoutConstraint::setConstant(double constant) {
  checkFinite(constant, "constant");
  constant_ = constant;
}

void NSLayoutConstraint::setPriority(UILayoutPriority priority) {
  priority_ = std::clamp(priority, 1.0f, UILayoutPriorityRequired);
}

const std::string& NSLayoutConstraint::visualFormat() const {
  static const std::string kNone;
  return format_ ? *format_ : kNone;
}

void NSLayoutConstraint::setActive(bool active) {
  if (active == active_) return;
  if (active) {
    activateConstraints({shared_from_this()});
    return;
  }
  {
    if (auto owner = owner_.lock()) {
      auto& list = owner->constraints_;
      list.erase(std::remove_if(list.begin(), list.end(),
                                [this](const Ref& c) { return c.get() == this; }),
                 list.end());
    }
    owner_.reset();
    active_ = false;
  }
}

void NSLayoutConstraint::activateConstraints(const std::vector<Ref>& constraints) {
  for (const auto& c : constraints) {
    if (!c || c->active_) continue;
    auto a = c->firstItem(), b = c->secondItem();
    // The closest common ancestor of the two views (the first view alone when there is one).
    std::shared_ptr<UIView> owner = a;
    if (a && b) {
      owner = nullptr;
      for (auto v = a; v; v = v->superview())
        if (b->isDescendantOfView(v.get())) {
          owner = v;
          break;
        }
    }
    if (!owner)
      Exception::raise(Exception::kInvalidArgument,
                       "Unable to activate constraint with items that have no common ancestor: " +
                           c->description());
    owner->addConstraint(c);
  }
}

void NSLayoutConstraint::deactivateConstraints(const std::vector<Ref>& constraints) {
  for (const auto& c : constraints)
    if (c) c->setActive(false);
}

std::string NSLayoutConstraint::description() const {
  const char* rel = relation_ == NSLayoutRelation::kEqual             ? "=="
                    : relation_ == NSLayoutRelation::kLessThanOrEqual ? "<="
                                                                      : ">=";
  std::string text =
      fmt::format("<{}.{} {} ", viewName(firstItem()), attributeName(firstAttribute_), rel);
  if (secondAttribute_ != NSLayoutAttribute::kNotAnAttribute) {
    text += fmt::format("{}.{}", viewName(secondItem()), attributeName(secondAttribute_));
    if (multiplier_ != 1) text += fmt::format(" * {}", multiplier_);
    if (constant_ != 0)
      text += fmt::format(" {} {}", constant_ < 0 ? '-' : '+', std::fabs(constant_));
  } else {
    text += fmt::format("{}", constant_);
  }
  if (priority_ < UILayoutPriorityRequired) text += fmt::format(" @{}", priority_);
  if (format_) text += fmt::format(" (from \"{}\")", *format_);
  return text + ">";
}

}  // namespace zv

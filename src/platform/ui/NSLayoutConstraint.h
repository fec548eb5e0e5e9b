// zv::NSLayoutConstraint is one linear relation between two views' layout attributes:
// first.attribute (==, <=, >=) multiplier * second.attribute + constant, with a priority (1000 is
// required). constraintsWithVisualFormat() builds the constraints of a visual format string
// ("H:|-[a(>=50)]-(8@750)-[b(==a)]-|"); each constraint remembers the format it came from so a view
// can list the formats of the sets added to it. Constraints hold their views weakly: the views own
// the constraints added to them. Main thread only.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "zentrova/UIView.h"

namespace zv {

enum class NSLayoutAttribute {
  kNotAnAttribute = 0,
  kLeft = 1,
  kRight = 2,
  kTop = 3,
  kBottom = 4,
  kLeading = 5,
  kTrailing = 6,
  kWidth = 7,
  kHeight = 8,
  kCenterX = 9,
  kCenterY = 10,
  kLastBaseline = 11,
  kFirstBaseline = 12,
};

enum class NSLayoutRelation { kLessThanOrEqual = -1, kEqual = 0, kGreaterThanOrEqual = 1 };

// Options of a visual format: align every view of the chain on one attribute.
using NSLayoutFormatOptions = unsigned long;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllLeft = 1ul << 1;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllRight = 1ul << 2;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllTop = 1ul << 3;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllBottom = 1ul << 4;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllLeading = 1ul << 5;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllTrailing = 1ul << 6;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllCenterX = 1ul << 9;
inline constexpr NSLayoutFormatOptions NSLayoutFormatAlignAllCenterY = 1ul << 10;

using ViewBindings = std::map<std::string, std::shared_ptr<UIView>>;
using LayoutMetrics = std::map<std::string, double>;

class NSLayoutConstraint : public std::enable_shared_from_this<NSLayoutConstraint> {
 public:
  using Ref = std::shared_ptr<NSLayoutConstraint>;

  // Raises zv::Exception for a NaN or infinite multiplier or constant.
  static Ref constraintWithItem(const std::shared_ptr<UIView>& view1, NSLayoutAttribute attr1,
                                NSLayoutRelation relation, const std::shared_ptr<UIView>& view2,
                                NSLayoutAttribute attr2, double multiplier, double constant);

  // Parses a visual format. Raises zv::Exception naming where and why for a format that does not
  // parse, a view or metric that is not bound, or a superview edge of a view without superview.
  static std::vector<Ref> constraintsWithVisualFormat(const std::string& format,
                                                      NSLayoutFormatOptions options = 0,
                                                      const LayoutMetrics& metrics = {},
                                                      const ViewBindings& views = {});

  static void activateConstraints(const std::vector<Ref>& constraints);
  static void deactivateConstraints(const std::vector<Ref>& constraints);

  std::shared_ptr<UIView> firstItem() const { return first_.lock(); }
  std::shared_ptr<UIView> secondItem() const { return second_.lock(); }
  NSLayoutAttribute firstAttribute() const { return firstAttribute_; }
  NSLayoutAttribute secondAttribute() const { return secondAttribute_; }
  NSLayoutRelation relation() const { return relation_; }
  double multiplier() const { return multiplier_; }
  double constant() const { return constant_; }
  // Raises zv::Exception for NaN or infinity.
  void setConstant(double constant);
  UILayoutPriority priority() const { return priority_; }
  // Priorities are clamped to 1...1000.
  void setPriority(UILayoutPriority priority);
  bool isActive() const { return active_; }
  // Activating adds the constraint to the closest common ancestor of its views.
  void setActive(bool active);
  // The visual format this constraint was made from (empty for one made directly).
  const std::string& visualFormat() const;
  const std::shared_ptr<const std::string>& visualFormatRef() const { return format_; }
  // "<first.attr == second.attr * m + c @p>" for logs.
  std::string description() const;

  NSLayoutConstraint() = default;

 private:
  friend class UIView;
  friend class VisualFormatParser;
  std::weak_ptr<UIView> first_;
  std::weak_ptr<UIView> second_;
  NSLayoutAttribute firstAttribute_ = NSLayoutAttribute::kNotAnAttribute;
  NSLayoutAttribute secondAttribute_ = NSLayoutAttribute::kNotAnAttribute;
  NSLayoutRelation relation_ = NSLayoutRelation::kEqual;
  double multiplier_ = 1;
  double constant_ = 0;
  UILayoutPriority priority_ = UILayoutPriorityRequired;
  bool active_ = false;
  std::shared_ptr<const std::string> format_;
  std::weak_ptr<UIView> owner_;  // the view it was added to
};

}  // namespace zv

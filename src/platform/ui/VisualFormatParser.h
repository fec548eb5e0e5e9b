// zv::VisualFormatParser reads one visual format string into constraints:
//   (H:|V:)? (| connection)? [view(predicates)] (connection [view(predicates)])* (connection |)?
// where a connection is empty (flush), "-" (standard spacing: 8 points between siblings, 20 to the
// superview) or "-predicates-", a predicate is (== | <= | >=)? (number | metric | view)
// (@priority)?, and predicates are one simple number or metric, or a parenthesised, comma-separated
// list. Every failure raises zv::Exception whose reason says why and shows where, under the format.
#pragma once

#include <string>
#include <vector>

#include "platform/ui/NSLayoutConstraint.h"

namespace zv {

class VisualFormatParser {
 public:
  VisualFormatParser(const std::string& format, NSLayoutFormatOptions options,
                     const LayoutMetrics& metrics, const ViewBindings& views);
  std::vector<NSLayoutConstraint::Ref> parse();

 private:
  struct Predicate {
    NSLayoutRelation relation = NSLayoutRelation::kEqual;
    double constant = 0;
    std::shared_ptr<UIView> view;  // another view as the object (view predicates only)
    UILayoutPriority priority = UILayoutPriorityRequired;
  };

  [[noreturn]] void fail(const std::string& why) const;
  bool atEnd() const { return pos_ >= format_.size(); }
  // The next character, past any spaces (spaces between tokens mean nothing).
  char peek() {
    while (pos_ < format_.size() && (format_[pos_] == ' ' || format_[pos_] == '\t')) ++pos_;
    return atEnd() ? '\0' : format_[pos_];
  }
  bool accept(char c);
  void expect(char c, const char* what);
  std::string identifier();
  double number();
  double constantOrMetric();
  std::vector<Predicate> predicateList(bool allowViews);
  Predicate predicate(bool allowViews);
  std::shared_ptr<UIView> boundView(const std::string& name, size_t at) const;
  void addConstraint(const std::shared_ptr<UIView>& a, NSLayoutAttribute attrA,
                     NSLayoutRelation relation, const std::shared_ptr<UIView>& b,
                     NSLayoutAttribute attrB, double constant, UILayoutPriority priority);

  std::shared_ptr<const std::string> formatRef_;
  const std::string& format_;
  NSLayoutFormatOptions options_;
  const LayoutMetrics& metrics_;
  const ViewBindings& views_;
  size_t pos_ = 0;
  std::vector<NSLayoutConstraint::Ref> result_;
};

}  // namespace zv

#include "platform/ui/VisualFormatParser.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "platform/ui/NSLayoutConstraint.h"
#include "zentrova/Exception.h"
#include "zentrova/UIView.h"

namespace zv {

namespace {
constexpr double kSiblingSpacing = 8;
constexpr double kSuperviewSpacing = 20;
}  // namespace

VisualFormatParser::VisualFormatParser(const std::string& format, NSLayoutFormatOptions options,
                                       const LayoutMetrics& metrics, const ViewBindings& views)
    : formatRef_(std::make_shared<const std::string>(format)),
      format_(*formatRef_),
      options_(options),
      metrics_(metrics),
      views_(views) {}

void VisualFormatParser::fail(const std::string& why) const {
  std::string caret(std::min(pos_, format_.size()), ' ');
  Exception::raise(Exception::kInvalidArgument, "Unable to parse constraint format: \n" + why +
                                                    "\n" + format_ + "\n" + caret + "^");
}

bool VisualFormatParser::accept(char c) {
  if (peek() != c) return false;
  ++pos_;
  return true;
}

void VisualFormatParser::expect(char c, const char* what) {
  if (!accept(c)) fail(what);
}

std::string VisualFormatParser::identifier() {
  char first = peek();
  size_t start = pos_;
  if (std::isalpha(static_cast<unsigned char>(first)) || first == '_') {
    while (!atEnd() &&
           (std::isalnum(static_cast<unsigned char>(format_[pos_])) || format_[pos_] == '_'))
      ++pos_;
  }
  return format_.substr(start, pos_ - start);
}

double VisualFormatParser::number() {
  peek();
  const char* begin = format_.c_str() + pos_;
  char* end = nullptr;
  double value = std::strtod(begin, &end);
  if (end == begin) fail("Expected a number or a metric name");
  pos_ += static_cast<size_t>(end - begin);
  if (!std::isfinite(value)) fail("A constant must be a finite number");
  return value;
}

double VisualFormatParser::constantOrMetric() {
  if (std::isalpha(static_cast<unsigned char>(peek())) || peek() == '_') {
    size_t at = pos_;
    std::string name = identifier();
    auto it = metrics_.find(name);
    if (it == metrics_.end()) {
      pos_ = at;
      fail(name + " is not a key in the metrics dictionary.");
    }
    if (!std::isfinite(it->second)) {
      pos_ = at;
      fail("The metric " + name + " is not a finite number.");
    }
    return it->second;
  }
  return number();
}

std::shared_ptr<UIView> VisualFormatParser::boundView(const std::string& name, size_t at) const {
  auto it = views_.find(name);
  if (it == views_.end() || !it->second) {
    const_cast<VisualFormatParser*>(this)->pos_ = at;
    fail(name + " is not a key in the views dictionary.");
  }
  return it->second;
}

VisualFormatParser::Predicate VisualFormatParser::predicate(bool allowViews) {
  Predicate p;
  if (accept('=')) {
    expect('=', "Expected '==' as a relation");
  } else if (accept('<')) {
    expect('=', "Expected '<=' as a relation");
    p.relation = NSLayoutRelation::kLessThanOrEqual;
  } else if (accept('>')) {
    expect('=', "Expected '>=' as a relation");
    p.relation = NSLayoutRelation::kGreaterThanOrEqual;
  }
  if (std::isalpha(static_cast<unsigned char>(peek())) || peek() == '_') {
    size_t at = pos_;
    std::string name = identifier();
    if (metrics_.count(name)) {
      pos_ = at;
      p.constant = constantOrMetric();
    } else if (allowViews && views_.count(name)) {
      p.view = boundView(name, at);
    } else {
      pos_ = at;
      fail(name + (allowViews ? " is not a key in the views or metrics dictionaries."
                              : " is not a key in the metrics dictionary."));
    }
  } else {
    p.constant = number();
  }
  if (accept('@')) {
    size_t at = pos_;
    double priority = constantOrMetric();
    if (!(priority >= 1 && priority <= 1000)) {
      pos_ = at;
      fail("A priority must be greater than 0 and at most 1000");
    }
    p.priority = static_cast<UILayoutPriority>(priority);
  }
  return p;
}

std::vector<VisualFormatParser::Predicate> VisualFormatParser::predicateList(bool allowViews) {
  std::vector<Predicate> list;
  expect('(', "Expected '(' to open a predicate list");
  do {
    list.push_back(predicate(allowViews));
  } while (accept(','));
  expect(')', "Expected ')' to close the predicate list, or ',' before another predicate");
  return list;
}

void VisualFormatParser::addConstraint(const std::shared_ptr<UIView>& a, NSLayoutAttribute attrA,
                                       NSLayoutRelation relation, const std::shared_ptr<UIView>& b,
                                       NSLayoutAttribute attrB, double constant,
                                       UILayoutPriority priority) {
  auto c = std::make_shared<NSLayoutConstraint>();
  c->first_ = a;
  c->firstAttribute_ = attrA;
  c->relation_ = relation;
  c->second_ = b;
  c->secondAttribute_ = b ? attrB : NSLayoutAttribute::kNotAnAttribute;
  c->constant_ = constant;
  c->priority_ = priority;
  c->format_ = formatRef_;
  result_.push_back(std::move(c));
}

std::vector<NSLayoutConstraint::Ref> VisualFormatParser::parse() {
  bool vertical = false;
  if (format_.rfind("V:", 0) == 0) {
    vertical = true;
    pos_ = 2;
  } else if (format_.rfind("H:", 0) == 0) {
    pos_ = 2;
  }
  const auto leading = vertical ? NSLayoutAttribute::kTop : NSLayoutAttribute::kLeading;
  const auto trailing = vertical ? NSLayoutAttribute::kBottom : NSLayoutAttribute::kTrailing;
  const auto size = vertical ? NSLayoutAttribute::kHeight : NSLayoutAttribute::kWidth;

  // A connection: nothing, "-", or "-predicates-". Returns the predicates (empty: flush) and
  // whether it was the standard spacing.
  auto connection = [&](bool& standard) {
    std::vector<Predicate> predicates;
    standard = false;
    if (!accept('-')) return predicates;
    if (peek() == '[' || peek() == '|') {
      standard = true;
      return predicates;
    }
    if (peek() == '(') {
      predicates = predicateList(false);
    } else {
      Predicate p;
      p.constant = constantOrMetric();
      predicates.push_back(p);
    }
    expect('-', "Expected a '-' after the spacing");
    return predicates;
  };
  auto spacing = [&](const std::shared_ptr<UIView>& before, NSLayoutAttribute beforeAttr,
                     const std::shared_ptr<UIView>& after, NSLayoutAttribute afterAttr,
                     const std::vector<Predicate>& predicates, bool standard,
                     double standardValue) {
    // after.attr REL before.attr + constant
    if (predicates.empty()) {
      addConstraint(after, afterAttr, NSLayoutRelation::kEqual, before, beforeAttr,
                    standard ? standardValue : 0, UILayoutPriorityRequired);
      return;
    }
    for (const auto& p : predicates)
      addConstraint(after, afterAttr, p.relation, before, beforeAttr, p.constant, p.priority);
  };

  auto superviewOf = [&](const std::shared_ptr<UIView>& view, size_t at) {
    auto parent = view->superview();
    if (!parent) {
      pos_ = at;
      fail("Unable to interpret '|' character, because the related view doesn't have a superview");
    }
    return parent;
  };

  bool leadingEdge = false;
  size_t leadingEdgeAt = 0;
  std::vector<Predicate> pendingPredicates;
  bool pendingStandard = false;
  if (peek() == '|') {
    leadingEdgeAt = pos_;
    ++pos_;
    leadingEdge = true;
    pendingPredicates = connection(pendingStandard);
  }
  std::vector<std::shared_ptr<UIView>> chain;
  std::shared_ptr<UIView> previous;
  for (;;) {
    if (!accept('[')) fail(chain.empty() ? "Expected a view" : "Expected a view or '|'");
    size_t nameAt = pos_;
    std::string name = identifier();
    if (name.empty()) fail("Expected a view name");
    auto view = boundView(name, nameAt);
    if (peek() == '(') {
      for (const auto& p : predicateList(true)) {
        if (p.view)
          addConstraint(view, size, p.relation, p.view, size, p.constant, p.priority);
        else
          addConstraint(view, size, p.relation, nullptr, NSLayoutAttribute::kNotAnAttribute,
                        p.constant, p.priority);
      }
    }
    expect(']', "Expected a ']' to close the view");
    if (chain.empty()) {
      if (leadingEdge) {
        auto parent = superviewOf(view, leadingEdgeAt);
        spacing(parent, leading, view, leading, pendingPredicates, pendingStandard,
                kSuperviewSpacing);
      }
    } else {
      spacing(previous, trailing, view, leading, pendingPredicates, pendingStandard,
              kSiblingSpacing);
    }
    chain.push_back(view);
    previous = view;
    size_t connectionAt = pos_;
    pendingPredicates = connection(pendingStandard);
    bool hadConnection = pos_ != connectionAt;
    if (peek() == '|') {
      size_t edgeAt = pos_;
      ++pos_;
      auto parent = superviewOf(view, edgeAt);
      spacing(view, trailing, parent, trailing, pendingPredicates, pendingStandard,
              kSuperviewSpacing);
      if (peek() != '\0') fail("Expected the end of the format after '|'");
      break;
    }
    if (peek() == '\0') {
      if (hadConnection) fail("Expected a view or '|' after the connection");
      break;
    }
    if (peek() != '[') fail("Expected a view or '|'");
  }

  static const std::pair<NSLayoutFormatOptions, NSLayoutAttribute> kAlign[] = {
      {NSLayoutFormatAlignAllLeft, NSLayoutAttribute::kLeft},
      {NSLayoutFormatAlignAllRight, NSLayoutAttribute::kRight},
      {NSLayoutFormatAlignAllTop, NSLayoutAttribute::kTop},
      {NSLayoutFormatAlignAllBottom, NSLayoutAttribute::kBottom},
      {NSLayoutFormatAlignAllLeading, NSLayoutAttribute::kLeading},
      {NSLayoutFormatAlignAllTrailing, NSLayoutAttribute::kTrailing},
      {NSLayoutFormatAlignAllCenterX, NSLayoutAttribute::kCenterX},
      {NSLayoutFormatAlignAllCenterY, NSLayoutAttribute::kCenterY},
  };
  for (const auto& [flag, attribute] : kAlign) {
    if (!(options_ & flag)) continue;
    bool horizontalAttribute =
        attribute == NSLayoutAttribute::kLeft || attribute == NSLayoutAttribute::kRight ||
        attribute == NSLayoutAttribute::kLeading || attribute == NSLayoutAttribute::kTrailing ||
        attribute == NSLayoutAttribute::kCenterX;
    if (horizontalAttribute != vertical) {
      pos_ = 0;
      fail(
          "Options mask required views to be aligned on a horizontal edge, which is not "
          "allowed for layout that is also horizontal.");
    }
    for (size_t i = 1; i < chain.size(); ++i)
      addConstraint(chain[i - 1], attribute, NSLayoutRelation::kEqual, chain[i], attribute, 0,
                    UILayoutPriorityRequired);
  }
  return std::move(result_);
}

}  // namespace zv

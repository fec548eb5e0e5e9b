#include "platform/ui/LayoutEngine.h"

#include <fmt/format.h>

#include <cmath>

#include "platform/foundation/Log.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "zentrova/UIView.h"

namespace zv {

namespace {

using Relation = SimplexSolver::Relation;

// Priorities 1...999 become weights far enough apart that a stronger priority outweighs any
// realistic number of weaker ones.
double weightFor(UILayoutPriority priority) {
  if (priority >= UILayoutPriorityRequired) return 0;
  return std::pow(10.0, priority / 125.0);
}
// The root's own size: a preference stronger than every priority below required, so only
// required constraints of its subtree (a stack of fixed heights) give it another size; the
// sizes content asks for (hugging, compression resistance) do not.
const double kRootPreferenceWeight = std::pow(10.0, 999.5 / 125.0);

// Parts of the generated keys.
enum Part { kFrameX, kFrameY, kFrameW, kFrameH, kHugW, kHugH, kResistW, kResistH, kUser };

}  // namespace

bool LayoutEngine::Equation::sameAs(const Equation& other) const {
  return constant == other.constant && sameButConstant(other);
}

bool LayoutEngine::Equation::sameButConstant(const Equation& other) const {
  if (relation != other.relation || weight != other.weight || terms.size() != other.terms.size())
    return false;
  for (size_t i = 0; i < terms.size(); ++i)
    if (terms[i].variable != other.terms[i].variable ||
        terms[i].coefficient != other.terms[i].coefficient)
      return false;
  return true;
}

const LayoutEngine::ViewVars& LayoutEngine::varsFor(const UIView* view) {
  auto it = vars_.find(view);
  if (it != vars_.end()) return it->second;
  ViewVars v{solver_.newVariable(), solver_.newVariable(), solver_.newVariable(),
             solver_.newVariable()};
  return vars_.emplace(view, v).first->second;
}

bool LayoutEngine::equationFor(const NSLayoutConstraint& c, Equation& equation) {
  auto addAttribute = [&](const std::shared_ptr<UIView>& view, NSLayoutAttribute attribute,
                          double sign) {
    if (attribute == NSLayoutAttribute::kNotAnAttribute) return true;
    if (!view || !treeViews_.count(view.get())) return false;
    const ViewVars& v = varsFor(view.get());
    switch (attribute) {
      case NSLayoutAttribute::kLeft:
      case NSLayoutAttribute::kLeading:
        equation.terms.push_back({v.x, sign});
        break;
      case NSLayoutAttribute::kRight:
      case NSLayoutAttribute::kTrailing:
        equation.terms.push_back({v.x, sign});
        equation.terms.push_back({v.w, sign});
        break;
      case NSLayoutAttribute::kTop:
      case NSLayoutAttribute::kFirstBaseline:
        equation.terms.push_back({v.y, sign});
        break;
      case NSLayoutAttribute::kBottom:
      case NSLayoutAttribute::kLastBaseline:
        equation.terms.push_back({v.y, sign});
        equation.terms.push_back({v.h, sign});
        break;
      case NSLayoutAttribute::kWidth:
        equation.terms.push_back({v.w, sign});
        break;
      case NSLayoutAttribute::kHeight:
        equation.terms.push_back({v.h, sign});
        break;
      case NSLayoutAttribute::kCenterX:
        equation.terms.push_back({v.x, sign});
        equation.terms.push_back({v.w, sign * 0.5});
        break;
      case NSLayoutAttribute::kCenterY:
        equation.terms.push_back({v.y, sign});
        equation.terms.push_back({v.h, sign * 0.5});
        break;
      case NSLayoutAttribute::kNotAnAttribute:
        break;
    }
    return true;
  };
  // first REL m * second + c  becomes  first - m * second - c  REL 0.
  if (!addAttribute(c.firstItem(), c.firstAttribute(), 1.0)) return false;
  if (c.secondAttribute() != NSLayoutAttribute::kNotAnAttribute &&
      !addAttribute(c.secondItem(), c.secondAttribute(), -c.multiplier()))
    return false;
  equation.constant = -c.constant();
  equation.relation = c.relation() == NSLayoutRelation::kEqual ? Relation::kEqual
                      : c.relation() == NSLayoutRelation::kLessThanOrEqual
                          ? Relation::kLessOrEqual
                          : Relation::kGreaterOrEqual;
  equation.weight = weightFor(c.priority());
  return true;
}

void LayoutEngine::collect(UIView& view, std::vector<std::pair<Key, Equation>>& wanted,
                           std::vector<std::shared_ptr<NSLayoutConstraint>>& owners) {
  const ViewVars& v = varsFor(&view);
  CGRect f = view.frame();
  auto fixed = [&](int part, SimplexSolver::Variable var, SimplexSolver::Variable parent,
                   double value, double weight) {
    if (!std::isfinite(value)) value = 0;  // a frame set to NaN or infinity counts as 0
    Equation s;
    s.terms.push_back({var, 1.0});
    if (parent >= 0) s.terms.push_back({parent, -1.0});
    s.constant = -value;
    s.weight = weight;
    wanted.push_back({Key{&view, part}, std::move(s)});
    owners.push_back(nullptr);
  };
  auto parent = view.superview();
  if (&view == &root_) {
    fixed(kFrameX, v.x, -1, 0, 0);
    fixed(kFrameY, v.y, -1, 0, 0);
    fixed(kFrameW, v.w, -1, f.size.width, kRootPreferenceWeight);
    fixed(kFrameH, v.h, -1, f.size.height, kRootPreferenceWeight);
  } else if (view.translatesAutoresizingMaskIntoConstraints() && parent) {
    const ViewVars& p = varsFor(parent.get());
    fixed(kFrameX, v.x, p.x, f.origin.x, 0);
    fixed(kFrameY, v.y, p.y, f.origin.y, 0);
    fixed(kFrameW, v.w, -1, f.size.width, 0);
    fixed(kFrameH, v.h, -1, f.size.height, 0);
  }
  CGSize intrinsic = view.intrinsicContentSize();
  if (view.hasWidthDependentIntrinsicSize()) widthDependent_ = true;
  auto sizeLimits = [&](SimplexSolver::Variable var, double value, int hugPart, int resistPart,
                        bool vertical) {
    if (!(value >= 0) || !std::isfinite(value)) return;  // none, or nonsense from a measurer
    Equation hug;
    hug.terms.push_back({var, 1.0});
    hug.constant = -value;
    hug.relation = Relation::kLessOrEqual;
    hug.weight = weightFor(view.contentHuggingPriority(vertical));
    wanted.push_back({Key{&view, hugPart}, std::move(hug)});
    owners.push_back(nullptr);
    Equation resist;
    resist.terms.push_back({var, 1.0});
    resist.constant = -value;
    resist.relation = Relation::kGreaterOrEqual;
    resist.weight = weightFor(view.contentCompressionResistancePriority(vertical));
    wanted.push_back({Key{&view, resistPart}, std::move(resist)});
    owners.push_back(nullptr);
  };
  sizeLimits(v.w, intrinsic.width, kHugW, kResistW, false);
  sizeLimits(v.h, intrinsic.height, kHugH, kResistH, true);
  for (const auto& c : view.constraints()) {
    if (!c->isActive()) continue;
    Equation s;
    if (!equationFor(*c, s)) continue;  // a view left the tree
    wanted.push_back({Key{c.get(), kUser}, std::move(s)});
    owners.push_back(c);
  }
  for (const auto& sub : view.subviews()) collect(*sub, wanted, owners);
}

void LayoutEngine::reportConflict(const Key& key, const Entry& entry) {
  if (!reported_.insert(key.object).second) return;
  std::string involved;
  std::unordered_set<SimplexSolver::Variable> vars;
  for (const auto& t : entry.equation.terms) vars.insert(t.variable);
  for (const auto& [k, e] : entries_) {
    if (!e.constraint || !e.handle || e.equation.weight != 0) continue;
    bool shares = false;
    for (const auto& t : e.equation.terms) shares = shares || vars.count(t.variable);
    if (shares) involved += "\n    " + e.constraint->description();
  }
  std::string broken = entry.constraint ? entry.constraint->description() : "a view's own frame";
  log::system(fmt::format(
      "Unable to simultaneously satisfy constraints.{}\nWill attempt to recover by breaking "
      "constraint\n    {}",
      involved, broken));
}

void LayoutEngine::addEntry(const Key& key, Entry& entry) {
  try {
    entry.handle = solver_.add(entry.equation.terms, entry.equation.constant,
                               entry.equation.relation, entry.equation.weight);
  } catch (const SimplexSolver::Unsatisfiable&) {
    entry.handle = 0;
    reportConflict(key, entry);
  }
}

void LayoutEngine::layout() {
  treeViews_.clear();
  std::vector<UIView*> stack{&root_};
  while (!stack.empty()) {
    UIView* v = stack.back();
    stack.pop_back();
    treeViews_.insert(v);
    for (const auto& s : v->subviews()) stack.push_back(s.get());
  }
  std::vector<std::pair<Key, Equation>> wanted;
  std::vector<std::shared_ptr<NSLayoutConstraint>> owners;
  widthDependent_ = false;
  collect(root_, wanted, owners);

  for (auto& [key, entry] : entries_) entry.seen = false;
  std::vector<size_t> toAdd;
  for (size_t i = 0; i < wanted.size(); ++i) {
    auto it = entries_.find(wanted[i].first);
    if (it != entries_.end() && !it->second.seen && it->second.equation.sameAs(wanted[i].second)) {
      it->second.seen = true;
    } else if (it != entries_.end() && !it->second.seen && it->second.handle &&
               it->second.equation.sameButConstant(wanted[i].second)) {
      // Only the constant moved: shift it in place, the incremental way.
      it->second.equation.constant = wanted[i].second.constant;
      // A required constraint that can no longer hold is taken out and added again below,
      // where the conflict is reported.
      if (solver_.changeConstant(it->second.handle, it->second.equation.constant))
        it->second.seen = true;
      else
        toAdd.push_back(i);
    } else {
      toAdd.push_back(i);
    }
  }
  // Drop what went away or changed first, so a changed constraint never meets its old self.
  bool removed = false;
  for (auto it = entries_.begin(); it != entries_.end();) {
    if (it->second.seen) {
      ++it;
      continue;
    }
    if (it->second.handle) solver_.remove(it->second.handle), removed = true;
    it = entries_.erase(it);
  }
  // Constraints broken earlier get another chance once something was taken away.
  if (removed) {
    for (auto& [key, entry] : entries_)
      if (!entry.handle) addEntry(key, entry);
  }
  for (size_t i : toAdd) {
    auto& [key, equation] = wanted[i];
    auto existing = entries_.find(key);
    if (existing != entries_.end() && existing->second.seen) continue;  // added twice
    Entry& entry = entries_[key];
    entry.equation = std::move(equation);
    entry.constraint = owners[i];
    entry.seen = true;
    addEntry(key, entry);
  }
  applyFrames(root_, 0, 0);
}

void LayoutEngine::applyFrames(UIView& view, double parentX, double parentY) {
  const ViewVars& v = varsFor(&view);
  double x = solver_.value(v.x), y = solver_.value(v.y);
  CGRect frame{{x - parentX, y - parentY}, {solver_.value(v.w), solver_.value(v.h)}};
  if (&view == &root_) frame.origin = view.frame().origin;
  view.setFrame(frame);
  for (const auto& sub : view.subviews()) applyFrames(*sub, x, y);
}

}  // namespace zv

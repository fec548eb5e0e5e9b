// zv::LayoutEngine lays out one view tree: it collects every active constraint of the tree, the
// frames of views that translate their autoresizing mask (required), the intrinsic sizes of
// views that have one (hugging and compression resistance at their priorities) and the root's own
// frame (a preference weaker than any priority, so required constraints of the subtree that fix
// the root's size win), solves them with the incremental simplex and sets the frames.
//
// The engine keeps its solver between passes and hands it only what changed: a constant set to a
// new value re-solves by a few pivots. A required constraint that cannot hold is left out (the
// first one found in conflict), reported once on the system log with the constraints involved,
// and layout completes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/ui/SimplexSolver.h"

namespace zv {

class UIView;
class NSLayoutConstraint;

class LayoutEngine {
 public:
  explicit LayoutEngine(UIView& root) : root_(root) {}
  // Solves and sets the frames of the tree under the root.
  void layout();
  // Whether the last pass met a view whose intrinsic size depends on its width.
  bool needsSecondPass() const { return widthDependent_; }
  size_t solverConstraintCount() const { return solver_.constraintCount(); }

 private:
  struct Key {
    const void* object;
    int part;
    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    size_t operator()(const Key& k) const {
      return std::hash<const void*>()(k.object) * 31 + static_cast<size_t>(k.part);
    }
  };
  struct Equation {
    std::vector<SimplexSolver::Term> terms;
    double constant = 0;
    SimplexSolver::Relation relation = SimplexSolver::Relation::kEqual;
    double weight = 0;  // 0: required
    bool sameAs(const Equation& other) const;
    bool sameButConstant(const Equation& other) const;
  };
  struct Entry {
    Equation equation;
    SimplexSolver::Handle handle = 0;                // 0 while broken
    std::shared_ptr<NSLayoutConstraint> constraint;  // keeps a user constraint's identity alive
    bool seen = false;
  };
  struct ViewVars {
    SimplexSolver::Variable x, y, w, h;
  };

  const ViewVars& varsFor(const UIView* view);
  void collect(UIView& view, std::vector<std::pair<Key, Equation>>& wanted,
               std::vector<std::shared_ptr<NSLayoutConstraint>>& owners);
  bool equationFor(const NSLayoutConstraint& c, Equation& equation);
  void addEntry(const Key& key, Entry& entry);
  void reportConflict(const Key& key, const Entry& entry);
  void applyFrames(UIView& view, double parentX, double parentY);

  UIView& root_;
  SimplexSolver solver_;
  std::unordered_map<const UIView*, ViewVars> vars_;
  std::unordered_map<Key, Entry, KeyHash> entries_;
  std::unordered_set<const void*> treeViews_;
  std::unordered_set<const void*> reported_;
  bool widthDependent_ = false;
};

}  // namespace zv

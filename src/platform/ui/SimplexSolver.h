// zv::SimplexSolver is the incremental linear-constraint solver behind layout: the Cassowary
// algorithm. Constraints are linear (in)equalities over variables; required ones must hold, the
// others carry a weight and are satisfied as far as they can be, heavier ones first. Adding or
// removing one constraint updates the current solution by a few pivots instead of solving again
// from scratch. A solver is used from one thread.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <unordered_map>
#include <vector>

namespace zv {

class SimplexSolver {
 public:
  using Variable = int;
  using Handle = int;
  enum class Relation { kLessOrEqual, kEqual, kGreaterOrEqual };
  struct Term {
    Variable variable;
    double coefficient;
  };
  // Raised by add() when a required constraint cannot hold together with the others; the solver
  // is left as it was before the call.
  struct Unsatisfiable : std::runtime_error {
    Unsatisfiable() : std::runtime_error("required constraint cannot be satisfied") {}
  };

  Variable newVariable();
  // Adds `sum(terms) + constant  relation  0`. A weight of 0 or less means required.
  Handle add(const std::vector<Term>& terms, double constant, Relation relation, double weight);
  void remove(Handle handle);
  // Gives a constraint a new constant in place: the rows that hold its marker shift, and a dual
  // simplex restores feasibility. Costs one pass over the rows plus the few pivots needed, where
  // removing and adding again would pivot through every row that depends on it.
  // Returns false when the new constant leaves a required constraint unsatisfiable; the caller
  // then removes the constraint.
  bool changeConstant(Handle handle, double constant);
  // The variable's value in the current solution (0 for a variable nothing pins).
  double value(Variable variable) const;
  size_t constraintCount() const { return tags_.size(); }

 private:
  enum class Kind : uint8_t { kInvalid, kExternal, kSlack, kError, kDummy };
  using Symbol = int;  // index into kinds_; 0 is invalid

  // constant + sum(coefficient * symbol), the cells sorted by symbol so rows merge in one pass.
  struct Row {
    double constant = 0;
    std::vector<std::pair<Symbol, double>> cells;
    void remove(Symbol s);
    void insert(Symbol s, double c);
    void insert(const Row& other, double c);
    void solveFor(Symbol s);
    void solveFor(Symbol lhs, Symbol rhs);
    double coefficientFor(Symbol s) const;
    void substitute(Symbol s, const Row& row);
    void reverseSign();
  };
  struct Tag {
    Symbol marker = 0;
    Symbol other = 0;
    double weight = 0;
    double markerCoefficient = 1;  // of the marker in `constant + terms + m * marker = 0`
    double constant = 0;
  };

  Symbol newSymbol(Kind kind);
  Row createRow(const std::vector<Term>& terms, double constant, Relation relation, double weight,
                Tag& tag);
  Symbol chooseSubject(const Row& row, const Tag& tag) const;
  bool allDummies(const Row& row) const;
  bool addWithArtificialVariable(const Row& row);
  void substitute(Symbol s, const Row& row);
  void optimize(Row& objective);
  Symbol enteringSymbol(const Row& objective) const;
  Symbol anyPivotableSymbol(const Row& row) const;
  std::unordered_map<Symbol, Row>::iterator leavingRow(Symbol entering);
  std::unordered_map<Symbol, Row>::iterator markerLeavingRow(Symbol marker);
  void removeMarkerEffects(Symbol marker, double weight);
  bool dualOptimize();

  std::vector<Kind> kinds_{Kind::kInvalid};
  std::vector<Symbol> variableSymbols_;  // Variable -> its external symbol
  std::unordered_map<Symbol, Row> rows_;
  std::unordered_map<Handle, Tag> tags_;
  Handle nextHandle_ = 1;
  Row objective_;
  Row* artificial_ = nullptr;
  std::vector<Symbol> infeasible_;
};

}  // namespace zv

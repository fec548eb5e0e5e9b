#include "platform/ui/SimplexSolver.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zv {

namespace {
constexpr double kEpsilon = 1.0e-8;
bool nearZero(double v) { return std::fabs(v) < kEpsilon; }
}  // namespace

namespace {
using Cells = std::vector<std::pair<int, double>>;
Cells::iterator lower(Cells& cells, int s) {
  return std::lower_bound(
      cells.begin(), cells.end(), s,
      [](const std::pair<int, double>& cell, int sym) { return cell.first < sym; });
}
Cells::const_iterator lower(const Cells& cells, int s) {
  return std::lower_bound(
      cells.begin(), cells.end(), s,
      [](const std::pair<int, double>& cell, int sym) { return cell.first < sym; });
}
}  // namespace

void SimplexSolver::Row::insert(Symbol s, double c) {
  auto it = lower(cells, s);
  if (it != cells.end() && it->first == s) {
    it->second += c;
    if (nearZero(it->second)) cells.erase(it);
  } else if (!nearZero(c)) {
    cells.insert(it, {s, c});
  }
}

void SimplexSolver::Row::remove(Symbol s) {
  auto it = lower(cells, s);
  if (it != cells.end() && it->first == s) cells.erase(it);
}

void SimplexSolver::Row::insert(const Row& other, double c) {
  constant += other.constant * c;
  if (other.cells.empty()) return;
  Cells merged;
  merged.reserve(cells.size() + other.cells.size());
  auto a = cells.begin(), ae = cells.end();
  auto b = other.cells.begin(), be = other.cells.end();
  while (a != ae || b != be) {
    if (b == be || (a != ae && a->first < b->first)) {
      merged.push_back(*a++);
    } else if (a == ae || b->first < a->first) {
      double v = b->second * c;
      if (!nearZero(v)) merged.emplace_back(b->first, v);
      ++b;
    } else {
      double v = a->second + b->second * c;
      if (!nearZero(v)) merged.emplace_back(a->first, v);
      ++a, ++b;
    }
  }
  cells.swap(merged);
}

void SimplexSolver::Row::solveFor(Symbol s) {
  auto it = lower(cells, s);
  double c = -1.0 / it->second;
  cells.erase(it);
  constant *= c;
  for (auto& cell : cells) cell.second *= c;
}

void SimplexSolver::Row::solveFor(Symbol lhs, Symbol rhs) {
  insert(lhs, -1.0);
  solveFor(rhs);
}

double SimplexSolver::Row::coefficientFor(Symbol s) const {
  auto it = lower(cells, s);
  return it != cells.end() && it->first == s ? it->second : 0.0;
}

void SimplexSolver::Row::substitute(Symbol s, const Row& row) {
  auto it = lower(cells, s);
  if (it == cells.end() || it->first != s) return;
  double c = it->second;
  cells.erase(it);
  insert(row, c);
}

void SimplexSolver::Row::reverseSign() {
  constant = -constant;
  for (auto& cell : cells) cell.second = -cell.second;
}

SimplexSolver::Symbol SimplexSolver::newSymbol(Kind kind) {
  kinds_.push_back(kind);
  return static_cast<Symbol>(kinds_.size() - 1);
}

SimplexSolver::Variable SimplexSolver::newVariable() {
  variableSymbols_.push_back(newSymbol(Kind::kExternal));
  return static_cast<Variable>(variableSymbols_.size() - 1);
}

double SimplexSolver::value(Variable variable) const {
  if (variable < 0 || static_cast<size_t>(variable) >= variableSymbols_.size()) return 0;
  auto it = rows_.find(variableSymbols_[variable]);
  return it == rows_.end() ? 0.0 : it->second.constant;
}

SimplexSolver::Row SimplexSolver::createRow(const std::vector<Term>& terms, double constant,
                                            Relation relation, double weight, Tag& tag) {
  Row row;
  row.constant = constant;
  for (const auto& term : terms) {
    if (nearZero(term.coefficient)) continue;
    Symbol s = variableSymbols_.at(term.variable);
    auto basic = rows_.find(s);
    if (basic != rows_.end())
      row.insert(basic->second, term.coefficient);
    else
      row.insert(s, term.coefficient);
  }
  bool required = weight <= 0;
  if (relation == Relation::kEqual) {
    if (required) {
      tag.marker = newSymbol(Kind::kDummy);
      tag.markerCoefficient = 1.0;
      row.insert(tag.marker, 1.0);
    } else {
      tag.marker = newSymbol(Kind::kError);
      tag.other = newSymbol(Kind::kError);
      tag.markerCoefficient = -1.0;
      row.insert(tag.marker, -1.0);
      row.insert(tag.other, 1.0);
      objective_.insert(tag.marker, weight);
      objective_.insert(tag.other, weight);
    }
  } else {
    double c = relation == Relation::kLessOrEqual ? 1.0 : -1.0;
    tag.marker = newSymbol(Kind::kSlack);
    tag.markerCoefficient = c;
    row.insert(tag.marker, c);
    if (!required) {
      tag.other = newSymbol(Kind::kError);
      row.insert(tag.other, -c);
      objective_.insert(tag.other, weight);
    }
  }
  if (row.constant < 0) row.reverseSign();
  return row;
}

SimplexSolver::Symbol SimplexSolver::chooseSubject(const Row& row, const Tag& tag) const {
  for (const auto& [s, c] : row.cells)
    if (kinds_[s] == Kind::kExternal) return s;
  auto pivotable = [&](Symbol s) {
    return s && (kinds_[s] == Kind::kSlack || kinds_[s] == Kind::kError) &&
           row.coefficientFor(s) < 0;
  };
  if (pivotable(tag.marker)) return tag.marker;
  if (pivotable(tag.other)) return tag.other;
  return 0;
}

bool SimplexSolver::allDummies(const Row& row) const {
  for (const auto& [s, c] : row.cells)
    if (kinds_[s] != Kind::kDummy) return false;
  return true;
}

SimplexSolver::Handle SimplexSolver::add(const std::vector<Term>& terms, double constant,
                                         Relation relation, double weight) {
  Tag tag;
  tag.weight = weight;
  tag.constant = constant;
  Row row = createRow(terms, constant, relation, weight, tag);
  Symbol subject = chooseSubject(row, tag);
  if (!subject && allDummies(row)) {
    if (!nearZero(row.constant)) throw Unsatisfiable();
    subject = tag.marker;
  }
  if (!subject) {
    if (!addWithArtificialVariable(row)) {
      throw Unsatisfiable();
    }
  } else {
    row.solveFor(subject);
    substitute(subject, row);
    rows_.emplace(subject, std::move(row));
  }
  Handle handle = nextHandle_++;
  tags_.emplace(handle, tag);
  optimize(objective_);
  infeasible_.clear();
  return handle;
}

bool SimplexSolver::addWithArtificialVariable(const Row& row) {
  Symbol art = newSymbol(Kind::kSlack);
  rows_.emplace(art, row);
  Row artificial = row;
  artificial_ = &artificial;
  optimize(artificial);
  artificial_ = nullptr;
  bool success = nearZero(artificial.constant);
  auto it = rows_.find(art);
  if (!success) {
    // The artificial variable is still basic: dropping its row restores the system as it was.
    if (it != rows_.end()) rows_.erase(it);
    for (auto& [s, r] : rows_) r.remove(art);
    objective_.remove(art);
    return false;
  }
  if (it != rows_.end()) {
    Row basic = std::move(it->second);
    rows_.erase(it);
    if (basic.cells.empty()) return success;
    Symbol entering = anyPivotableSymbol(basic);
    if (!entering) return false;
    basic.solveFor(art, entering);
    substitute(entering, basic);
    rows_.emplace(entering, std::move(basic));
  }
  for (auto& [s, r] : rows_) r.remove(art);
  objective_.remove(art);
  return success;
}

void SimplexSolver::substitute(Symbol s, const Row& row) {
  for (auto& [basic, r] : rows_) {
    r.substitute(s, row);
    if (kinds_[basic] != Kind::kExternal && r.constant < 0) infeasible_.push_back(basic);
  }
  objective_.substitute(s, row);
  if (artificial_) artificial_->substitute(s, row);
}

SimplexSolver::Symbol SimplexSolver::enteringSymbol(const Row& objective) const {
  Symbol best = 0;
  for (const auto& [s, c] : objective.cells)
    if (kinds_[s] != Kind::kDummy && c < 0 && (!best || s < best)) best = s;
  return best;
}

SimplexSolver::Symbol SimplexSolver::anyPivotableSymbol(const Row& row) const {
  for (const auto& [s, c] : row.cells)
    if (kinds_[s] == Kind::kSlack || kinds_[s] == Kind::kError) return s;
  return 0;
}

std::unordered_map<SimplexSolver::Symbol, SimplexSolver::Row>::iterator SimplexSolver::leavingRow(
    Symbol entering) {
  double ratio = std::numeric_limits<double>::max();
  auto found = rows_.end();
  for (auto it = rows_.begin(); it != rows_.end(); ++it) {
    if (kinds_[it->first] == Kind::kExternal) continue;
    double c = it->second.coefficientFor(entering);
    if (c < 0) {
      double r = -it->second.constant / c;
      if (r < ratio || (r == ratio && found != rows_.end() && it->first < found->first)) {
        ratio = r;
        found = it;
      }
    }
  }
  return found;
}

void SimplexSolver::optimize(Row& objective) {
  for (;;) {
    Symbol entering = enteringSymbol(objective);
    if (!entering) return;
    auto it = leavingRow(entering);
    if (it == rows_.end()) return;  // unbounded: cannot happen with weights >= 0
    Symbol leaving = it->first;
    Row row = std::move(it->second);
    rows_.erase(it);
    row.solveFor(leaving, entering);
    substitute(entering, row);
    rows_.emplace(entering, std::move(row));
  }
}

std::unordered_map<SimplexSolver::Symbol, SimplexSolver::Row>::iterator
SimplexSolver::markerLeavingRow(Symbol marker) {
  double r1 = std::numeric_limits<double>::max(), r2 = r1;
  auto first = rows_.end(), second = rows_.end(), third = rows_.end();
  for (auto it = rows_.begin(); it != rows_.end(); ++it) {
    double c = it->second.coefficientFor(marker);
    if (c == 0) continue;
    if (kinds_[it->first] == Kind::kExternal) {
      third = it;
    } else if (c < 0) {
      double r = -it->second.constant / c;
      if (r < r1) r1 = r, first = it;
    } else {
      double r = it->second.constant / c;
      if (r < r2) r2 = r, second = it;
    }
  }
  if (first != rows_.end()) return first;
  if (second != rows_.end()) return second;
  return third;
}

void SimplexSolver::removeMarkerEffects(Symbol marker, double weight) {
  auto it = rows_.find(marker);
  if (it != rows_.end())
    objective_.insert(it->second, -weight);
  else
    objective_.insert(marker, -weight);
}

void SimplexSolver::remove(Handle handle) {
  auto found = tags_.find(handle);
  if (found == tags_.end()) return;
  Tag tag = found->second;
  tags_.erase(found);
  if (tag.marker && kinds_[tag.marker] == Kind::kError) removeMarkerEffects(tag.marker, tag.weight);
  if (tag.other && kinds_[tag.other] == Kind::kError) removeMarkerEffects(tag.other, tag.weight);
  auto it = rows_.find(tag.marker);
  if (it != rows_.end()) {
    rows_.erase(it);
  } else {
    auto leaving = markerLeavingRow(tag.marker);
    if (leaving != rows_.end()) {
      Symbol s = leaving->first;
      Row row = std::move(leaving->second);
      rows_.erase(leaving);
      row.solveFor(s, tag.marker);
      substitute(tag.marker, row);
    }
  }
  optimize(objective_);
  infeasible_.clear();
}

bool SimplexSolver::changeConstant(Handle handle, double constant) {
  auto found = tags_.find(handle);
  if (found == tags_.end()) return false;
  Tag& tag = found->second;
  // With the marker shifted to marker' = marker - delta / m, the tableau holds the new constant.
  double shift = (constant - tag.constant) / tag.markerCoefficient;
  tag.constant = constant;
  if (shift == 0) return true;
  infeasible_.clear();
  auto basic = rows_.find(tag.marker);
  if (basic != rows_.end()) {
    basic->second.constant -= shift;
    if (basic->second.constant < 0) infeasible_.push_back(tag.marker);
  } else {
    for (auto& [s, row] : rows_) {
      double c = row.coefficientFor(tag.marker);
      if (c == 0) continue;
      row.constant += c * shift;
      if (kinds_[s] != Kind::kExternal && row.constant < 0) infeasible_.push_back(s);
    }
  }
  return dualOptimize();
}

bool SimplexSolver::dualOptimize() {
  bool feasible = true;
  while (!infeasible_.empty()) {
    Symbol leaving = infeasible_.back();
    infeasible_.pop_back();
    auto it = rows_.find(leaving);
    if (it == rows_.end() || nearZero(it->second.constant) || it->second.constant >= 0) continue;
    Symbol entering = 0;
    double ratio = std::numeric_limits<double>::max();
    for (const auto& [s, c] : it->second.cells) {
      if (c <= 0 || kinds_[s] == Kind::kDummy) continue;
      double r = objective_.coefficientFor(s) / c;
      if (r < ratio || (r == ratio && s < entering)) ratio = r, entering = s;
    }
    if (!entering) {  // a required constraint cannot hold any more
      feasible = false;
      continue;
    }
    Row row = std::move(it->second);
    rows_.erase(it);
    row.solveFor(leaving, entering);
    substitute(entering, row);
    rows_.emplace(entering, std::move(row));
  }
  return feasible;
}

}  // namespace zv

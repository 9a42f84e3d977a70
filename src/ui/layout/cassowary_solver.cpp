#include "ui/layout/cassowary_solver.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace linewatch::ui {

namespace {

// Points. Smaller values count as 0.
constexpr double kConstantTolerance = 1e-7;
// Lower than the priority of any constraint.
constexpr double kTiePriority = 0;

bool isNegative(double coefficient) { return coefficient < -kCoefficientTolerance; }

}  // namespace

CassowarySolver::Variable CassowarySolver::addVariable() { return makeSymbol(Kind::variable); }

double CassowarySolver::value(Variable variable) const {
  const std::uint32_t row = symbols_[variable].row;
  return row == kNone ? 0 : rows_[row].constant;
}

void CassowarySolver::clear() {
  symbols_.clear();
  rowCount_ = 0;
  basis_.clear();
  records_.clear();
  objectives_.clear();
  hasArtificial_ = false;
  violable_ = 0;
  pivots_ = 0;
}

void CassowarySolver::freeSymbol(std::uint32_t symbol) {
  if (symbol != kNone) symbols_.remove(symbol);
}

bool CassowarySolver::isPivotable(std::uint32_t symbol) const {
  const Kind kind = symbols_[symbol].kind;
  return kind == Kind::slack || kind == Kind::error;
}

// ---- Adding ----

std::optional<CassowarySolver::Handle> CassowarySolver::add(std::span<const Term> terms, double constant,
                                                            Relation relation, double priority) {
  Record record = makeRecord(relation, priority);
  record.constant = constant;
  fillWorkingRow(terms, constant, record);
  std::uint32_t subject = subjectOfWorkingRow(record);
  if (subject == kNone && workingRowHasOnlyDummies()) {
    if (std::fabs(working_.constant) > kConstantTolerance) {
      discard(record);
      return std::nullopt;
    }
    subject = record.marker;
  }
  if (subject != kNone) {
    working_.solveFor(subject);
    enterWorkingRow(subject);
  } else if (!enterWithArtificialSymbol(record)) {
    discard(record);
    return std::nullopt;
  }
  addViolations(record, 1);
  return records_.add(record);
}

CassowarySolver::Record CassowarySolver::makeRecord(Relation relation, double priority) {
  const bool required = priority >= kRequiredPriority;
  Record record;
  record.priority = priority;
  if (relation != Relation::equal) {
    record.marker = makeSymbol(Kind::slack);
    record.markerCoefficient = relation == Relation::lessThanOrEqual ? 1 : -1;
    if (!required) record.other = makeSymbol(Kind::error);
  } else if (required) {
    record.marker = makeSymbol(Kind::dummy);
  } else {
    record.marker = makeSymbol(Kind::error);
    record.other = makeSymbol(Kind::error);
  }
  // Smaller for every later constraint, but always positive.
  if (!required) record.tieWeight = 1 + 1 / (2 + static_cast<double>(violable_++));
  return record;
}

void CassowarySolver::discard(const Record& record) {
  freeSymbol(record.marker);
  freeSymbol(record.other);
}

// The constraint with its own symbols, in terms of the symbols that are not basic. The constant is not
// negative.
void CassowarySolver::fillWorkingRow(std::span<const Term> terms, double constant, const Record& record) {
  working_.clear();
  working_.constant = constant;
  for (const Term& term : terms) addSymbolTo(working_, term.variable, term.coefficient);
  working_.add(record.marker, record.markerCoefficient);
  if (record.other != kNone) working_.add(record.other, -record.markerCoefficient);
  if (working_.constant < 0) working_.scale(-1);
}

void CassowarySolver::addSymbolTo(SimplexRow& row, std::uint32_t symbol, double coefficient) {
  if (isBasic(symbol)) {
    row.add(rows_[symbols_[symbol].row], coefficient, scratch_);
  } else {
    row.add(symbol, coefficient);
  }
}

// The symbol that can become the basis of the working row and keep all rows feasible.
std::uint32_t CassowarySolver::subjectOfWorkingRow(const Record& record) const {
  for (const SimplexTerm& term : working_.terms()) {
    if (symbols_[term.symbol].kind == Kind::variable) return term.symbol;
  }
  for (const std::uint32_t own : {record.marker, record.other}) {
    if (own != kNone && isPivotable(own) && working_.coefficientOf(own) < 0) return own;
  }
  return kNone;
}

bool CassowarySolver::workingRowHasOnlyDummies() const {
  return std::all_of(working_.terms().begin(), working_.terms().end(),
                     [&](const SimplexTerm& term) { return symbols_[term.symbol].kind == Kind::dummy; });
}

void CassowarySolver::enterWorkingRow(std::uint32_t basic) {
  substituteEverywhere(basic, working_, kNone);
  if (rows_.size() == rowCount_) rows_.emplace_back();
  std::swap(rows_[rowCount_], working_);
  basis_.resize(rowCount_ + 1);
  basis_[rowCount_] = basic;
  symbols_[basic].row = rowCount_++;
}

// The working row can hold if and only if an artificial symbol equal to it can be minimised to 0.
bool CassowarySolver::enterWithArtificialSymbol(const Record& record) {
  const std::uint32_t artificial = makeSymbol(Kind::slack);
  artificialObjective_ = working_;
  hasArtificial_ = true;
  enterWorkingRow(artificial);
  minimizeArtificial();
  hasArtificial_ = false;
  const bool holds = std::fabs(artificialObjective_.constant) < kConstantTolerance;
  const bool entered = !isBasic(artificial) || removeArtificialRow(artificial, holds ? record : Record{});
  for (std::uint32_t i = 0; i < rowCount_; ++i) rows_[i].remove(artificial);
  for (Objective& each : objectives_) each.row.remove(artificial);
  freeSymbol(artificial);
  return holds && entered;
}

// The artificial symbol is still basic. At 0, another symbol takes over its row. Above 0, the row is removed
// together with the constraint.
bool CassowarySolver::removeArtificialRow(std::uint32_t artificial, const Record& record) {
  const std::uint32_t row = symbols_[artificial].row;
  if (record.marker == kNone) {
    dropRow(row);
    return false;
  }
  const auto& terms = rows_[row].terms();
  const auto pivotable = std::find_if(terms.begin(), terms.end(),
                                      [&](const SimplexTerm& term) { return isPivotable(term.symbol); });
  // Without one the constraint is redundant; the row of its own symbol says so.
  const std::uint32_t entering = pivotable != terms.end() ? pivotable->symbol : record.marker;
  if (rows_[row].coefficientOf(entering) == 0) {
    dropRow(row);
  } else {
    pivot(row, entering);
  }
  return true;
}

SimplexRow& CassowarySolver::objective(double priority) {
  const auto place = std::find_if(objectives_.begin(), objectives_.end(),
                                  [&](const Objective& each) { return each.priority <= priority; });
  if (place != objectives_.end() && place->priority == priority) return place->row;
  return objectives_.insert(place, Objective{priority, {}})->row;
}

void CassowarySolver::addViolations(const Record& record, double sign) {
  for (const std::uint32_t symbol : {record.marker, record.other}) {
    if (symbol == kNone || symbols_[symbol].kind != Kind::error) continue;
    addSymbolTo(objective(record.priority), symbol, sign);
    addSymbolTo(objective(kTiePriority), symbol, sign * record.tieWeight);
  }
}

// ---- Removing and changing ----

void CassowarySolver::remove(Handle handle) {
  const Record record = records_[handle];
  addViolations(record, -1);
  if (!isBasic(record.marker)) {
    const std::uint32_t row = rowToLeaveFor(record.marker);
    if (row != kNone) pivot(row, record.marker);
  }
  for (const std::uint32_t symbol : {record.marker, record.other}) {
    if (symbol == kNone) continue;
    if (isBasic(symbol)) dropRow(symbols_[symbol].row);
    // Only rounding errors can be left.
    for (std::uint32_t i = 0; i < rowCount_; ++i) rows_[i].remove(symbol);
    for (Objective& each : objectives_) each.row.remove(symbol);
  }
  discard(record);
  records_.remove(handle);
}

// The row whose symbol a freed marker replaces in the basis. Rows of redundant constraints come first, so
// that one of them takes over; the row of a variable comes last, when no other row depends on the marker.
std::uint32_t CassowarySolver::rowToLeaveFor(std::uint32_t marker) const {
  std::uint32_t best = kNone;
  int bestRank = 4;
  double bestRatio = std::numeric_limits<double>::infinity();
  for (std::uint32_t i = 0; i < rowCount_; ++i) {
    const double coefficient = rows_[i].coefficientOf(marker);
    if (coefficient == 0) continue;
    const Kind kind = symbols_[basis_[i]].kind;
    const int rank = kind == Kind::dummy ? 0 : kind == Kind::variable ? 3 : coefficient < 0 ? 1 : 2;
    const double ratio = rows_[i].constant / std::fabs(coefficient);
    if (rank > bestRank || (rank == bestRank && ratio >= bestRatio)) continue;
    best = i;
    bestRank = rank;
    bestRatio = ratio;
  }
  return best;
}

void CassowarySolver::dropRow(std::uint32_t row) {
  symbols_[basis_[row]].row = kNone;
  const std::uint32_t last = --rowCount_;
  if (row != last) {
    std::swap(rows_[row], rows_[last]);
    basis_[row] = basis_[last];
    symbols_[basis_[row]].row = row;
  }
}

// A change of the constant by d changes the marker by d / its coefficient.
void CassowarySolver::changeConstant(Handle handle, double constant) {
  Record& record = records_[handle];
  const double shift = (constant - record.constant) / record.markerCoefficient;
  record.constant = constant;
  if (isBasic(record.marker)) {
    rows_[symbols_[record.marker].row].constant -= shift;
    return;
  }
  for (std::uint32_t i = 0; i < rowCount_; ++i) {
    rows_[i].constant += rows_[i].coefficientOf(record.marker) * shift;
  }
}

// ---- The simplex ----

void CassowarySolver::pivot(std::uint32_t row, std::uint32_t entering) {
  const std::uint32_t leaving = basis_[row];
  rows_[row].solveFor(leaving, entering);
  symbols_[leaving].row = kNone;
  symbols_[entering].row = row;
  basis_[row] = entering;
  substituteEverywhere(entering, rows_[row], row);
  ++pivots_;
}

void CassowarySolver::substituteEverywhere(std::uint32_t symbol, const SimplexRow& replacement,
                                           std::uint32_t exceptRow) {
  for (std::uint32_t i = 0; i < rowCount_; ++i) {
    if (i != exceptRow) rows_[i].substitute(symbol, replacement, scratch_);
  }
  for (Objective& each : objectives_) each.row.substitute(symbol, replacement, scratch_);
  if (hasArtificial_) artificialObjective_.substitute(symbol, replacement, scratch_);
}

void CassowarySolver::optimize() {
  for (std::size_t left = pivotLimit(); left > 0; --left) {
    const std::uint32_t entering = enteringSymbol();
    if (entering == kNone) return;
    const std::uint32_t row = leavingRowFor(entering);
    if (row == kNone) return;
    pivot(row, entering);
  }
}

void CassowarySolver::minimizeArtificial() {
  for (std::size_t left = pivotLimit(); left > 0; --left) {
    const auto& terms = artificialObjective_.terms();
    const auto entering = std::find_if(terms.begin(), terms.end(), [&](const SimplexTerm& term) {
      return isNegative(term.coefficient) && symbols_[term.symbol].kind != Kind::dummy;
    });
    if (entering == terms.end()) return;
    const std::uint32_t row = leavingRowFor(entering->symbol);
    if (row == kNone) return;
    pivot(row, entering->symbol);
  }
}

// The lowest symbol whose growth improves the highest objective that can be improved. Together with the
// lowest of equal rows, this rule never cycles.
std::uint32_t CassowarySolver::enteringSymbol() const {
  for (std::size_t level = 0; level < objectives_.size(); ++level) {
    for (const SimplexTerm& term : objectives_[level].row.terms()) {
      if (isNegative(term.coefficient) && symbols_[term.symbol].kind != Kind::dummy &&
          higherObjectivesIgnore(level, term.symbol)) {
        return term.symbol;
      }
    }
  }
  return kNone;
}

bool CassowarySolver::higherObjectivesIgnore(std::size_t level, std::uint32_t symbol) const {
  for (std::size_t i = 0; i < level; ++i) {
    if (objectives_[i].row.coefficientOf(symbol) != 0) return false;
  }
  return true;
}

std::uint32_t CassowarySolver::leavingRowFor(std::uint32_t entering) const {
  std::uint32_t best = kNone;
  double bestRatio = std::numeric_limits<double>::infinity();
  for (std::uint32_t i = 0; i < rowCount_; ++i) {
    if (!isPivotable(basis_[i])) continue;
    const double coefficient = rows_[i].coefficientOf(entering);
    if (!isNegative(coefficient)) continue;
    const double ratio = -rows_[i].constant / coefficient;
    if (ratio < bestRatio || (ratio == bestRatio && basis_[i] < basis_[best])) {
      best = i;
      bestRatio = ratio;
    }
  }
  return best;
}

bool CassowarySolver::restoreFeasibility() {
  for (std::size_t left = pivotLimit(); left > 0; --left) {
    const std::uint32_t row = infeasibleRow();
    if (row == kNone) return redundanciesHold();
    const std::uint32_t entering = enteringForInfeasible(rows_[row]);
    if (entering == kNone) return false;
    pivot(row, entering);
  }
  return false;
}

std::uint32_t CassowarySolver::infeasibleRow() const {
  std::uint32_t lowest = kNone;
  for (std::uint32_t i = 0; i < rowCount_; ++i) {
    if (!isPivotable(basis_[i]) || rows_[i].constant >= -kConstantTolerance) continue;
    if (lowest == kNone || basis_[i] < basis_[lowest]) lowest = i;
  }
  return lowest;
}

// The symbol that makes the row feasible at the lowest cost.
std::uint32_t CassowarySolver::enteringForInfeasible(const SimplexRow& row) const {
  const SimplexTerm* best = nullptr;
  for (const SimplexTerm& term : row.terms()) {
    if (term.coefficient <= kCoefficientTolerance || !isPivotable(term.symbol)) continue;
    if (best == nullptr || costsLess(term, *best)) best = &term;
  }
  return best != nullptr ? best->symbol : kNone;
}

bool CassowarySolver::costsLess(const SimplexTerm& a, const SimplexTerm& b) const {
  for (const Objective& each : objectives_) {
    const double costA = each.row.coefficientOf(a.symbol) / a.coefficient;
    const double costB = each.row.coefficientOf(b.symbol) / b.coefficient;
    if (std::fabs(costA - costB) > kCoefficientTolerance) return costA < costB;
  }
  return false;
}

// The constant of a redundant constraint's row is the amount by which the constraint is violated.
bool CassowarySolver::redundanciesHold() const {
  for (std::uint32_t i = 0; i < rowCount_; ++i) {
    if (symbols_[basis_[i]].kind == Kind::dummy && std::fabs(rows_[i].constant) > kConstantTolerance)
      return false;
  }
  return true;
}

}  // namespace linewatch::ui

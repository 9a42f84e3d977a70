#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "ui/layout/layout_priority.h"
#include "ui/layout/simplex_row.h"
#include "ui/layout/slot_table.h"

namespace linewatch::ui {

/// An incremental solver of linear constraints after the Cassowary algorithm: a simplex tableau that stays
/// optimal while constraints are added, removed or get other constants.
///
/// Variables may have any sign. A required constraint always holds. The others are violated as little as
/// possible: a higher priority wins over any lower one, however large the violations are. Within one priority
/// the sum of the violations is minimal; among such solutions, the constraints added later are violated. A
/// variable that no constraint determines has some value, 0 when no constraint uses it.
class CassowarySolver {
 public:
  using Variable = std::uint32_t;
  using Handle = std::uint32_t;

  struct Term {
    Variable variable = 0;
    double coefficient = 0;
  };

  Variable addVariable();

  /// Adds: sum of the terms + constant, related to 0. A variable may occur in several terms. Absent when a
  /// required constraint contradicts earlier ones; it is not added then. `restoreFeasibility` must have
  /// succeeded after the last change of a constant.
  std::optional<Handle> add(std::span<const Term> terms, double constant, Relation relation, double priority);
  void remove(Handle handle);
  void changeConstant(Handle handle, double constant);

  /// Makes the required constraints hold after constants have changed. False when they now contradict each
  /// other, or after too many rounding errors: the solver must then be cleared.
  [[nodiscard]] bool restoreFeasibility();
  /// Minimises the violations after constraints were added or removed. Never fails; at worst the solution is
  /// not optimal.
  void optimize();

  double value(Variable variable) const;

  /// The number of pivots so far; rounding errors grow with it.
  std::size_t pivots() const { return pivots_; }
  /// Removes all constraints and variables.
  void clear();

 private:
  enum class Kind : std::uint8_t { unused, variable, slack, error, dummy };

  static constexpr std::uint32_t kNone = UINT32_MAX;

  struct Symbol {
    Kind kind = Kind::unused;
    /// The row that has this symbol as its basic one.
    std::uint32_t row = kNone;
  };

  /// A constraint's own symbols. At first the marker occurs in the constraint's row only, with
  /// `markerCoefficient`; later its column shows where the constraint went.
  struct Record {
    std::uint32_t marker = kNone;
    std::uint32_t other = kNone;
    double markerCoefficient = 1;
    double constant = 0;
    double priority = 0;
    double tieWeight = 0;
  };

  /// The violations to be minimised at a priority.
  struct Objective {
    double priority;
    SimplexRow row;
  };

  std::uint32_t makeSymbol(Kind kind) { return symbols_.add({kind, kNone}); }
  void freeSymbol(std::uint32_t symbol);
  bool isBasic(std::uint32_t symbol) const { return symbols_[symbol].row != kNone; }
  bool isPivotable(std::uint32_t symbol) const;

  Record makeRecord(Relation relation, double priority);
  void discard(const Record& record);
  void fillWorkingRow(std::span<const Term> terms, double constant, const Record& record);
  void addSymbolTo(SimplexRow& row, std::uint32_t symbol, double coefficient);
  std::uint32_t subjectOfWorkingRow(const Record& record) const;
  bool workingRowHasOnlyDummies() const;
  bool enterWithArtificialSymbol(const Record& record);
  bool removeArtificialRow(std::uint32_t artificial, const Record& record);
  void enterWorkingRow(std::uint32_t basic);
  void addViolations(const Record& record, double sign);
  SimplexRow& objective(double priority);

  std::uint32_t rowToLeaveFor(std::uint32_t marker) const;
  void dropRow(std::uint32_t row);
  void pivot(std::uint32_t row, std::uint32_t entering);
  void substituteEverywhere(std::uint32_t symbol, const SimplexRow& replacement, std::uint32_t exceptRow);

  void minimizeArtificial();
  std::uint32_t enteringSymbol() const;
  bool higherObjectivesIgnore(std::size_t level, std::uint32_t symbol) const;
  std::uint32_t leavingRowFor(std::uint32_t entering) const;

  std::uint32_t infeasibleRow() const;
  std::uint32_t enteringForInfeasible(const SimplexRow& row) const;
  bool costsLess(const SimplexTerm& a, const SimplexTerm& b) const;
  bool redundanciesHold() const;
  std::size_t pivotLimit() const { return 200 + 20 * (rowCount_ + symbols_.size()); }

  SlotTable<Symbol> symbols_;
  /// The first `rowCount_` rows are the tableau; the others are kept for their storage.
  std::vector<SimplexRow> rows_;
  std::vector<std::uint32_t> basis_;
  std::uint32_t rowCount_ = 0;
  SlotTable<Record> records_;
  /// Highest priority first; the last objective breaks ties.
  std::vector<Objective> objectives_;
  SimplexRow artificialObjective_;
  bool hasArtificial_ = false;
  SimplexRow working_;
  std::vector<SimplexTerm> scratch_;
  std::size_t violable_ = 0;
  std::size_t pivots_ = 0;
};

}  // namespace linewatch::ui

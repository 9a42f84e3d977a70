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

/// An incremental solver of linear constraints after the Cassowary algorithm: a simplex tableau whose optimum
/// is kept while constraints come, go and change their constants.
///
/// Variables may have any sign. A required constraint always holds. The others are violated as little as can
/// be: a higher priority is served before any lower one, however large the violations are; among equal
/// priorities the sum of the violations is smallest, and of several such solutions the one that violates the
/// constraints added later. What no constraint determines is some solution; an untouched variable is 0.
class CassowarySolver {
 public:
  using Variable = std::uint32_t;
  using Handle = std::uint32_t;

  struct Term {
    Variable variable = 0;
    double coefficient = 0;
  };

  Variable addVariable();

  /// Adds: sum of the terms + constant, related to 0. At most a few terms; equal variables may repeat. Absent
  /// when a required constraint contradicts those before: it is left out. `restoreFeasibility` must have
  /// succeeded after the last change of a constant.
  std::optional<Handle> add(std::span<const Term> terms, double constant, Relation relation, double priority);
  void remove(Handle handle);
  void changeConstant(Handle handle, double constant);

  /// Makes the required constraints hold after constants have changed. False when they contradict each other
  /// now (or the arithmetic gave up): the solver must be cleared then.
  [[nodiscard]] bool restoreFeasibility();
  /// Serves the priorities after constraints have come or gone. Never fails: at worst the solution is not the
  /// best one.
  void optimize();

  double value(Variable variable) const;

  /// How often two symbols have changed places; the tableau's rounding errors grow with it.
  std::size_t pivots() const { return pivots_; }
  /// Forgets constraints and variables alike.
  void clear();

 private:
  enum class Kind : std::uint8_t { unused, variable, slack, error, dummy };

  static constexpr std::uint32_t kNone = UINT32_MAX;

  struct Symbol {
    Kind kind = Kind::unused;
    /// The row that the symbol is the basis of.
    std::uint32_t row = kNone;
  };

  /// A constraint's own symbols. The marker stands in the constraint's row alone at first, times
  /// `markerCoefficient`: whatever happens to it tells what happened to the constraint.
  struct Record {
    std::uint32_t marker = kNone;
    std::uint32_t other = kNone;
    double markerCoefficient = 1;
    double constant = 0;
    double priority = 0;
    double tieWeight = 0;
  };

  /// What is minimised at a priority.
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
  /// The first `rowCount_` are the tableau; the others are storage to be used again.
  std::vector<SimplexRow> rows_;
  std::vector<std::uint32_t> basis_;
  std::uint32_t rowCount_ = 0;
  SlotTable<Record> records_;
  /// Highest priority first; the last one breaks ties.
  std::vector<Objective> objectives_;
  SimplexRow artificialObjective_;
  bool hasArtificial_ = false;
  SimplexRow working_;
  std::vector<SimplexTerm> scratch_;
  std::size_t violable_ = 0;
  std::size_t pivots_ = 0;
};

}  // namespace linewatch::ui

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "ui/layout/cassowary_solver.h"
#include "ui/layout/slot_table.h"

namespace linewatch::ui {

/// One linear constraint: the sum of the terms + constant, related to 0.
struct LinearConstraint {
  std::array<CassowarySolver::Term, 4> terms{};
  std::uint8_t termCount = 0;
  double constant = 0;
  Relation relation = Relation::equal;
  LayoutPriority priority = kRequiredPriority;
  /// When required constraints contradict each other, the one with the highest order is left out.
  std::uint64_t order = 0;

  /// `variable` is a variable of the system.
  void addTerm(std::uint32_t variable, double coefficient) { terms[termCount++] = {variable, coefficient}; }
};

/// The constraints of one axis of a layout. Changes take effect at `solve`, so that a contradiction between
/// two changes of a batch does no harm.
///
/// Required constraints are added in their order; one that contradicts earlier ones is left out as long as it
/// does. The result depends on the present constraints only, not on the history of changes. While a
/// constraint is left out, every change solves the whole system again.
class ConstraintSystem {
 public:
  using Variable = std::uint32_t;
  using Id = std::uint32_t;

  Variable addVariable();
  Id add(const LinearConstraint& constraint);
  void remove(Id id);
  void setConstant(Id id, double constant);
  double constantOf(Id id) const { return slots_[id].constraint.constant; }

  /// Applies the changes and solves; false when there were none.
  bool solve();
  double value(Variable variable) const { return solver_.value(variables_[variable]); }
  /// The required constraints left out by the last `solve`.
  const std::vector<Id>& leftOut() const { return leftOut_; }
  /// How often the whole system was solved again, not only the changes.
  std::size_t fullSolves() const { return fullSolves_; }

 private:
  struct Slot {
    LinearConstraint constraint;
    std::optional<CassowarySolver::Handle> handle;
    bool used = false;
    bool constantChanged = false;
  };

  bool solveChanges();
  bool applyConstants();
  bool applyAdditions();
  bool enter(Slot& slot);
  void solveAll();

  CassowarySolver solver_;
  /// The solver's number of each variable; a new one whenever the whole system is solved again.
  std::vector<CassowarySolver::Variable> variables_;
  SlotTable<Slot> slots_;
  std::vector<CassowarySolver::Handle> removed_;
  std::vector<Id> changed_;
  std::vector<Id> added_;
  std::vector<Id> leftOut_;
  std::size_t fullSolves_ = 0;
  bool dirty_ = false;
};

}  // namespace linewatch::ui

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
  /// Who gives way: of required constraints that contradict each other the one with the higher order.
  std::uint64_t order = 0;

  /// `variable` is one of the system's.
  void addTerm(std::uint32_t variable, double coefficient) { terms[termCount++] = {variable, coefficient}; }
};

/// The constraints of one axis of a layout, changed in batches: nothing is solved before `solve`, so that
/// what contradicts itself only half way through a change never does.
///
/// Contradicting required constraints: the constraints are taken in their order, and each that contradicts
/// those taken before it is left out until that changes. The outcome depends on the constraints alone, not on
/// how they came about. As long as something is left out, every change solves the whole system anew.
class ConstraintSystem {
 public:
  using Variable = std::uint32_t;
  using Id = std::uint32_t;

  Variable addVariable();
  Id add(const LinearConstraint& constraint);
  void remove(Id id);
  void setConstant(Id id, double constant);
  double constantOf(Id id) const { return slots_[id].constraint.constant; }

  /// Solves what has changed; false when nothing had.
  bool solve();
  double value(Variable variable) const { return solver_.value(variables_[variable]); }
  /// The required constraints that have to give way, after `solve`.
  const std::vector<Id>& leftOut() const { return leftOut_; }
  /// How often everything was solved from nothing, not only what had changed.
  std::size_t timesSolvedAnew() const { return timesSolvedAnew_; }

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
  void solveAnew();

  CassowarySolver solver_;
  /// The solver's name of each variable; another one whenever the system is solved anew.
  std::vector<CassowarySolver::Variable> variables_;
  SlotTable<Slot> slots_;
  std::vector<CassowarySolver::Handle> removed_;
  std::vector<Id> changed_;
  std::vector<Id> added_;
  std::vector<Id> leftOut_;
  std::size_t timesSolvedAnew_ = 0;
  bool dirty_ = false;
};

}  // namespace linewatch::ui

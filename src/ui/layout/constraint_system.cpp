#include "ui/layout/constraint_system.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace linewatch::ui {

namespace {

// After this many pivots rounding errors are still far below a pixel. A new tableau has none.
constexpr std::size_t kPivotsOfATableau = 20000;

}  // namespace

ConstraintSystem::Variable ConstraintSystem::addVariable() {
  variables_.push_back(solver_.addVariable());
  return static_cast<Variable>(variables_.size() - 1);
}

ConstraintSystem::Id ConstraintSystem::add(const LinearConstraint& constraint) {
  const Id id = slots_.add({constraint, std::nullopt, true, false});
  added_.push_back(id);
  dirty_ = true;
  return id;
}

void ConstraintSystem::remove(Id id) {
  if (slots_[id].handle) removed_.push_back(*slots_[id].handle);
  std::erase(added_, id);
  std::erase(changed_, id);
  slots_.remove(id);
  dirty_ = true;
}

void ConstraintSystem::setConstant(Id id, double constant) {
  Slot& slot = slots_[id];
  if (slot.constraint.constant == constant) return;
  slot.constraint.constant = constant;
  dirty_ = true;
  if (!slot.handle || slot.constantChanged) return;
  slot.constantChanged = true;
  changed_.push_back(id);
}

bool ConstraintSystem::solve() {
  if (!dirty_) return false;
  const bool isFull = !leftOut_.empty() || solver_.pivots() > kPivotsOfATableau;
  if (isFull || !solveChanges()) solveAll();
  removed_.clear();
  changed_.clear();
  added_.clear();
  dirty_ = false;
  return true;
}

// Removals first: a change or an addition may contradict a constraint that is to be removed.
bool ConstraintSystem::solveChanges() {
  if (!removed_.empty()) {
    for (const CassowarySolver::Handle handle : removed_) solver_.remove(handle);
    solver_.optimize();
  }
  return applyConstants() && applyAdditions();
}

bool ConstraintSystem::applyConstants() {
  for (const Id id : changed_) {
    Slot& slot = slots_[id];
    slot.constantChanged = false;
    solver_.changeConstant(*slot.handle, slot.constraint.constant);
  }
  return changed_.empty() || solver_.restoreFeasibility();
}

bool ConstraintSystem::applyAdditions() {
  if (added_.empty()) return true;
  for (const Id id : added_) {
    if (!enter(slots_[id])) return false;
  }
  solver_.optimize();
  return true;
}

bool ConstraintSystem::enter(Slot& slot) {
  const LinearConstraint& constraint = slot.constraint;
  auto terms = constraint.terms;
  for (std::size_t i = 0; i < constraint.termCount; ++i) terms[i].variable = variables_[terms[i].variable];
  slot.handle = solver_.add(std::span(terms).first(constraint.termCount), constraint.constant,
                            constraint.relation, constraint.priority);
  return slot.handle.has_value();
}

void ConstraintSystem::solveAll() {
  ++fullSolves_;
  solver_.clear();
  for (CassowarySolver::Variable& variable : variables_) variable = solver_.addVariable();
  std::vector<Id> order;
  for (Id id = 0; id < slots_.size(); ++id) {
    if (slots_[id].used) order.push_back(id);
  }
  std::sort(order.begin(), order.end(), [&](Id a, Id b) {
    const LinearConstraint& one = slots_[a].constraint;
    const LinearConstraint& other = slots_[b].constraint;
    return one.order != other.order ? one.order < other.order : a < b;
  });
  leftOut_.clear();
  for (const Id id : order) {
    slots_[id].constantChanged = false;
    if (!enter(slots_[id])) leftOut_.push_back(id);
  }
  solver_.optimize();
}

}  // namespace linewatch::ui

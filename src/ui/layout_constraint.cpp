#include "ui/layout_constraint.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

#include "platform/log.h"
#include "ui/view.h"

namespace linewatch::ui {

namespace {

constexpr std::array kAttributeNames = {"leading", "trailing", "centerX", "width",         "top",
                                        "bottom",  "centerY",  "height",  "firstBaseline", "lastBaseline"};
constexpr std::array kRelationNames = {"<=", "==", ">="};

/// Counts over all view trees, as a constraint is made before it has one; only the order within a tree
/// matters.
std::uint64_t nextOrder() {
  static std::uint64_t order = 0;
  return ++order;
}

std::string text(const LayoutItem* item, LayoutAttribute attribute) {
  const std::string owner = item != nullptr ? classNameOf(*item) : "nothing";
  return owner + "." + kAttributeNames.at(static_cast<std::size_t>(attribute));
}

std::string text(double number) {
  char digits[40];
  std::snprintf(digits, sizeof digits, "%g", number);
  return digits;
}

View* owner(LayoutItem* item) { return item != nullptr ? item->owningView() : nullptr; }

View* commonView(View* a, View* b) {
  for (View* view = a; view != nullptr; view = view->superview()) {
    if (b->isDescendantOf(*view)) return view;
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<LayoutConstraint> LayoutConstraint::make(LayoutTerm first, Relation relation,
                                                         LayoutTerm second, double multiplier,
                                                         double constant) {
  std::shared_ptr<LayoutConstraint> constraint(new LayoutConstraint);
  constraint->first_ = std::move(first);
  constraint->second_ = std::move(second);
  constraint->relation_ = relation;
  constraint->multiplier_ = multiplier;
  constraint->constant_ = constant;
  constraint->order_ = nextOrder();
  return constraint;
}

void LayoutConstraint::setConstant(double constant) {
  if (constant == constant_) return;
  constant_ = constant;
  if (holder_ != nullptr) holder_->constraintDidChange(*this);
}

void LayoutConstraint::setPriority(LayoutPriority priority) {
  if (priority == priority_) return;
  const bool wasActive = isActive();
  setActive(false);
  priority_ = priority;
  setActive(wasActive);
}

void LayoutConstraint::setActive(bool active) {
  if (active == isActive()) return;
  if (active) {
    activate();
  } else {
    deactivate();
  }
}

void LayoutConstraint::activate() {
  View* first = owner(firstItem());
  View* second = hasSecondItem() ? owner(secondItem()) : first;
  View* holder = first != nullptr && second != nullptr ? commonView(first, second) : nullptr;
  if (holder == nullptr || &first->layoutRoot() != &second->layoutRoot()) {
    if (!std::exchange(faultLogged_, true)) {
      logError("A constraint between items of different view trees stays inactive: %@", {description()});
    }
    return;
  }
  holder_ = holder;
  holder->keepConstraint(shared_from_this());
}

void LayoutConstraint::deactivate() { std::exchange(holder_, nullptr)->dropConstraint(*this); }

void LayoutConstraint::activate(std::initializer_list<std::shared_ptr<LayoutConstraint>> constraints) {
  for (const auto& constraint : constraints) constraint->setActive(true);
}

void LayoutConstraint::activate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints) {
  for (const auto& constraint : constraints) constraint->setActive(true);
}

void LayoutConstraint::deactivate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints) {
  for (const auto& constraint : constraints) constraint->setActive(false);
}

std::string LayoutConstraint::description() const {
  std::string line =
      text(firstItem(), first_.attribute) + " " + kRelationNames.at(static_cast<std::size_t>(relation_));
  if (!hasSecondItem()) return line + " " + text(constant_);
  line += " ";
  if (multiplier_ != 1) line += text(multiplier_) + " * ";
  return line + text(secondItem(), second_.attribute) + " + " + text(constant_);
}

}  // namespace linewatch::ui

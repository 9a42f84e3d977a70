#include "ui/layout/layout_constraint.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

#include "platform/log.h"
#include "ui/layout/layout_box.h"

namespace linewatch::ui {

namespace {

constexpr std::array kAttributeNames = {"leading", "trailing", "width",         "top",         "bottom",
                                        "centerY", "height",   "firstBaseline", "lastBaseline"};
constexpr std::array kRelationNames = {"<=", "==", ">="};

/// One sequence for all trees: a constraint is numbered before it belongs to one.
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

LayoutBox* ownerOf(LayoutItem* item) { return item != nullptr ? item->owningBox() : nullptr; }

/// The nearest box that contains both items, or is one of them; null when they are in different trees.
LayoutBox* commonBox(LayoutBox* a, LayoutBox* b) {
  if (a == nullptr || b == nullptr) return nullptr;
  while (a != nullptr && !b->isDescendantOf(*a)) a = a->superbox();
  return a;
}

}  // namespace

std::shared_ptr<LayoutConstraint> LayoutConstraint::make(LayoutTerm first, Relation relation,
                                                         LayoutTerm second, double constant) {
  std::shared_ptr<LayoutConstraint> constraint(new LayoutConstraint);
  constraint->first_ = std::move(first);
  constraint->second_ = std::move(second);
  constraint->relation_ = relation;
  constraint->constant_ = constant;
  constraint->order_ = nextOrder();
  return constraint;
}

void LayoutConstraint::setConstant(double constant) {
  if (constant == constant_) return;
  constant_ = constant;
  if (holder_ != nullptr) holder_->constraintDidChange(*this);
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
  LayoutBox* first = ownerOf(firstItem());
  LayoutBox* second = hasSecondItem() ? ownerOf(secondItem()) : first;
  LayoutBox* holder = commonBox(first, second);
  if (holder == nullptr || &first->layoutRoot() != &second->layoutRoot()) {
    if (!std::exchange(faultLogged_, true)) {
      logError("A constraint between items of different layout roots stays inactive: %@", {description()});
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

std::string LayoutConstraint::description() const {
  const std::string line = text(firstItem(), first_.attribute) + " " +
                           kRelationNames.at(static_cast<std::size_t>(relation_)) + " ";
  if (!hasSecondItem()) return line + text(constant_);
  return line + text(secondItem(), second_.attribute) + " + " + text(constant_);
}

}  // namespace linewatch::ui

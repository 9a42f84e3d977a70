#include "ui/layout/layout_box.h"

#include <algorithm>

#include "ui/layout/layout_engine.h"

namespace linewatch::ui {

LayoutBox::LayoutBox() = default;

LayoutBox::~LayoutBox() {
  for (const auto& constraint : constraints_) constraint->holder_ = nullptr;
  for (const auto& guide : guides_) guide->owningBox_ = nullptr;
}

void LayoutBox::endLayout() { engine_.reset(); }

// ---- The tree ----

bool LayoutBox::isDescendantOf(const LayoutBox& box) const {
  const LayoutBox* each = this;
  while (each != nullptr && each != &box) each = each->superbox();
  return each != nullptr;
}

LayoutBox& LayoutBox::layoutRoot() {
  LayoutBox* box = this;
  while (!box->isLayoutRoot()) box = box->superbox();
  return *box;
}

Rect LayoutBox::convertRectTo(const Rect& rect, const LayoutBox& ancestor) const {
  Rect moved = rect;
  for (const LayoutBox* box = this; box != nullptr && box != &ancestor; box = box->superbox()) {
    moved = moved.movedBy(box->frame().origin());
  }
  return moved;
}

void LayoutBox::addLayoutGuide(const std::shared_ptr<LayoutGuide>& guide) {
  if (!guide || guide->owningBox_ != nullptr) return;
  guide->owningBox_ = this;
  guides_.push_back(guide);
}

void LayoutBox::didEnterSuperbox() {
  if (ownLayoutRoot_) return;
  engine_.reset();
  structureDidChange();
}

void LayoutBox::willLeaveSuperbox() const {
  LayoutBox& former = *superbox();
  former.dropConstraintsWith(*this);
  if (!ownLayoutRoot_) former.structureDidChange();
}

void LayoutBox::dropConstraintsWith(const LayoutBox& leaving) {
  const auto isLeaving = [&](LayoutItem* item) {
    const LayoutBox* owner = item != nullptr ? item->owningBox() : nullptr;
    return owner != nullptr && owner->isDescendantOf(leaving);
  };
  for (LayoutBox* box = this; box != nullptr; box = box->superbox()) {
    const auto constraints = box->constraints_;
    for (const auto& constraint : constraints) {
      if (isLeaving(constraint->firstItem()) || isLeaving(constraint->secondItem()))
        constraint->setActive(false);
    }
  }
}

// ---- Changes ----

void LayoutBox::setLaidOutByConstraints(bool byConstraints) {
  if (laidOutByConstraints_ == byConstraints) return;
  laidOutByConstraints_ = byConstraints;
  structureDidChange();
}

void LayoutBox::invalidateIntrinsicContentSize() {
  contentChanged_ = true;
  layoutRoot().setNeedsLayout();
}

void LayoutBox::keepConstraint(const SharedConstraint& constraint) {
  constraints_.push_back(constraint);
  constraintDidChange(*constraint);
}

void LayoutBox::dropConstraint(const LayoutConstraint& constraint) {
  const auto place = std::find_if(constraints_.begin(), constraints_.end(),
                                  [&](const auto& each) { return each.get() == &constraint; });
  if (place == constraints_.end()) return;
  const SharedConstraint kept = *place;
  constraints_.erase(place);
  constraintDidChange(*kept);
}

void LayoutBox::constraintDidChange(LayoutConstraint& constraint) {
  LayoutBox& root = layoutRoot();
  if (root.engine_) root.engine_->constraintDidChange(constraint.shared_from_this());
  root.setNeedsLayout();
}

void LayoutBox::structureDidChange() {
  LayoutBox& root = layoutRoot();
  root.engine_.reset();
  root.setNeedsLayout();
}

// ---- The engine ----

LayoutEngine& LayoutBox::engine() {
  if (engine_ && !engine_->fitsEnvironment()) engine_.reset();
  if (!engine_) engine_ = std::make_unique<LayoutEngine>(*this);
  return *engine_;
}

void LayoutBox::layOutByConstraints() { engine().layOut(); }

Size LayoutBox::fittingSize(const Size& target, LayoutPriority horizontal, LayoutPriority vertical) {
  return engine().fittingSize(target, horizontal, vertical);
}

void LayoutBox::forgetFittingSize() {
  if (engine_) engine_->forgetFittingSize();
}

}  // namespace linewatch::ui

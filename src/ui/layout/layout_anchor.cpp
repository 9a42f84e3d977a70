#include "ui/layout/layout_anchor.h"

#include "ui/layout/layout_constraint.h"

namespace linewatch::ui {

Axis axisOf(LayoutAttribute attribute) {
  return attribute < LayoutAttribute::top ? Axis::horizontal : Axis::vertical;
}

template <Axis axis>
std::shared_ptr<LayoutConstraint> PositionAnchor<axis>::constraintEqualTo(const PositionAnchor& other,
                                                                          double constant) const {
  return LayoutConstraint::make(term_, Relation::equal, other.term_, constant);
}

template <Axis axis>
std::shared_ptr<LayoutConstraint> PositionAnchor<axis>::constraintGreaterThanOrEqualTo(
    const PositionAnchor& other, double constant) const {
  return LayoutConstraint::make(term_, Relation::greaterThanOrEqual, other.term_, constant);
}

template <Axis axis>
std::shared_ptr<LayoutConstraint> PositionAnchor<axis>::constraintLessThanOrEqualTo(
    const PositionAnchor& other, double constant) const {
  return LayoutConstraint::make(term_, Relation::lessThanOrEqual, other.term_, constant);
}

template class PositionAnchor<Axis::horizontal>;
template class PositionAnchor<Axis::vertical>;

std::shared_ptr<LayoutConstraint> DimensionAnchor::constraintEqualToConstant(double constant) const {
  return LayoutConstraint::make(term_, Relation::equal, {}, constant);
}

}  // namespace linewatch::ui

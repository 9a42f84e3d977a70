#include "ui/layout_anchor.h"

#include "ui/layout_constraint.h"

namespace linewatch::ui {

Axis axisOf(LayoutAttribute attribute) {
  return attribute < LayoutAttribute::top ? Axis::horizontal : Axis::vertical;
}

template <LayoutAnchorKind kind>
std::shared_ptr<LayoutConstraint> LayoutAnchor<kind>::constraintEqualTo(const LayoutAnchor& other,
                                                                        double constant) const {
  return LayoutConstraint::make(term_, Relation::equal, other.term_, 1, constant);
}

template <LayoutAnchorKind kind>
std::shared_ptr<LayoutConstraint> LayoutAnchor<kind>::constraintGreaterThanOrEqualTo(
    const LayoutAnchor& other, double constant) const {
  return LayoutConstraint::make(term_, Relation::greaterThanOrEqual, other.term_, 1, constant);
}

template <LayoutAnchorKind kind>
std::shared_ptr<LayoutConstraint> LayoutAnchor<kind>::constraintLessThanOrEqualTo(const LayoutAnchor& other,
                                                                                  double constant) const {
  return LayoutConstraint::make(term_, Relation::lessThanOrEqual, other.term_, 1, constant);
}

template <LayoutAnchorKind kind>
std::shared_ptr<LayoutConstraint> LayoutAnchor<kind>::constraintEqualTo(const LayoutAnchor& other,
                                                                        double multiplier,
                                                                        double constant) const
    requires(kind == LayoutAnchorKind::dimension) {
  return LayoutConstraint::make(term_, Relation::equal, other.term_, multiplier, constant);
}

template <LayoutAnchorKind kind>
std::shared_ptr<LayoutConstraint> LayoutAnchor<kind>::constraintEqualToConstant(double constant) const
    requires(kind == LayoutAnchorKind::dimension) {
  return LayoutConstraint::make(term_, Relation::equal, {}, 1, constant);
}

template <LayoutAnchorKind kind>
std::shared_ptr<LayoutConstraint> LayoutAnchor<kind>::constraintGreaterThanOrEqualToConstant(
    double constant) const requires(kind == LayoutAnchorKind::dimension) {
  return LayoutConstraint::make(term_, Relation::greaterThanOrEqual, {}, 1, constant);
}

template class LayoutAnchor<LayoutAnchorKind::x>;
template class LayoutAnchor<LayoutAnchorKind::y>;
template class LayoutAnchor<LayoutAnchorKind::dimension>;

}  // namespace linewatch::ui

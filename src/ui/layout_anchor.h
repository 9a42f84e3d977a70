#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "ui/layout/layout_priority.h"

namespace linewatch::ui {

class LayoutConstraint;
class LayoutItem;

/// Leading is the left edge in a left-to-right layout and the right edge in a right-to-left one.
enum class LayoutAttribute : std::uint8_t {
  leading,
  trailing,
  centerX,
  width,
  top,
  bottom,
  centerY,
  height,
  firstBaseline,
  lastBaseline
};

Axis axisOf(LayoutAttribute attribute);

/// A way to an item that may have gone away by the time it is followed.
using LayoutItemLink = std::shared_ptr<LayoutItem* const>;

/// An attribute of an item.
struct LayoutTerm {
  LayoutItemLink item;
  LayoutAttribute attribute = LayoutAttribute::leading;
};

enum class LayoutAnchorKind : std::uint8_t { x, y, dimension };

/// An edge, centre, baseline or size of an item, to make constraints with. Only anchors of one kind go
/// together. The constraints are not active yet; constants count along the axis, from leading to trailing and
/// downwards.
template <LayoutAnchorKind kind>
class LayoutAnchor {
 public:
  explicit LayoutAnchor(LayoutTerm term) : term_(std::move(term)) {}

  std::shared_ptr<LayoutConstraint> constraintEqualTo(const LayoutAnchor& other, double constant = 0) const;
  std::shared_ptr<LayoutConstraint> constraintGreaterThanOrEqualTo(const LayoutAnchor& other,
                                                                   double constant = 0) const;
  std::shared_ptr<LayoutConstraint> constraintLessThanOrEqualTo(const LayoutAnchor& other,
                                                                double constant = 0) const;

  std::shared_ptr<LayoutConstraint> constraintEqualTo(const LayoutAnchor& other, double multiplier,
                                                      double constant) const
      requires(kind == LayoutAnchorKind::dimension);
  std::shared_ptr<LayoutConstraint> constraintEqualToConstant(double constant) const
      requires(kind == LayoutAnchorKind::dimension);
  std::shared_ptr<LayoutConstraint> constraintGreaterThanOrEqualToConstant(double constant) const
      requires(kind == LayoutAnchorKind::dimension);

 private:
  LayoutTerm term_;
};

using XAnchor = LayoutAnchor<LayoutAnchorKind::x>;
using YAnchor = LayoutAnchor<LayoutAnchorKind::y>;
using DimensionAnchor = LayoutAnchor<LayoutAnchorKind::dimension>;

extern template class LayoutAnchor<LayoutAnchorKind::x>;
extern template class LayoutAnchor<LayoutAnchorKind::y>;
extern template class LayoutAnchor<LayoutAnchorKind::dimension>;

}  // namespace linewatch::ui

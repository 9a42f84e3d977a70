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
  width,
  top,
  bottom,
  centerY,
  height,
  firstBaseline,
  lastBaseline
};

Axis axisOf(LayoutAttribute attribute);

/// A weak reference to an item: null once the item is destroyed.
using LayoutItemLink = std::shared_ptr<LayoutItem* const>;

/// An attribute of an item.
struct LayoutTerm {
  LayoutItemLink item;
  LayoutAttribute attribute = LayoutAttribute::leading;
};

/// An edge, centre or baseline of an item. Makes constraints with other anchors of the same axis; they are
/// inactive at first. Constants are points: from leading to trailing, and downwards.
template <Axis axis>
class PositionAnchor {
 public:
  explicit PositionAnchor(LayoutTerm term) : term_(std::move(term)) {}

  std::shared_ptr<LayoutConstraint> constraintEqualTo(const PositionAnchor& other, double constant = 0) const;
  std::shared_ptr<LayoutConstraint> constraintGreaterThanOrEqualTo(const PositionAnchor& other,
                                                                   double constant = 0) const;
  std::shared_ptr<LayoutConstraint> constraintLessThanOrEqualTo(const PositionAnchor& other,
                                                                double constant = 0) const;

 private:
  LayoutTerm term_;
};

using XAnchor = PositionAnchor<Axis::horizontal>;
using YAnchor = PositionAnchor<Axis::vertical>;

extern template class PositionAnchor<Axis::horizontal>;
extern template class PositionAnchor<Axis::vertical>;

/// The width or height of an item.
class DimensionAnchor {
 public:
  explicit DimensionAnchor(LayoutTerm term) : term_(std::move(term)) {}

  /// Inactive at first.
  std::shared_ptr<LayoutConstraint> constraintEqualToConstant(double constant) const;

 private:
  LayoutTerm term_;
};

}  // namespace linewatch::ui

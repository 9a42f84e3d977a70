#pragma once

#include <cstdint>

namespace linewatch::ui {

enum class Axis : std::uint8_t { horizontal, vertical };

/// A T for each axis.
template <class T>
struct PerAxis {
  T horizontal{};
  T vertical{};

  T& operator[](Axis axis) { return axis == Axis::horizontal ? horizontal : vertical; }
  const T& operator[](Axis axis) const { return axis == Axis::horizontal ? horizontal : vertical; }
};

enum class Relation : std::uint8_t { lessThanOrEqual, equal, greaterThanOrEqual };

/// How much a constraint matters, from 1 to 1000. A constraint below kRequiredPriority may be violated; a
/// higher priority wins over any lower one.
using LayoutPriority = double;

inline constexpr LayoutPriority kRequiredPriority = 1000;
/// How strongly content resists being made smaller than it is.
inline constexpr LayoutPriority kHighPriority = 750;
/// How strongly text stays inside its layout root. It is stronger than the resistance, so text loses lines.
inline constexpr LayoutPriority kTextInsidePriority = 800;
/// How strongly content resists being made larger.
inline constexpr LayoutPriority kLowPriority = 250;
/// Pulls a size towards 0 to find the smallest possible size.
inline constexpr LayoutPriority kFittingSizePriority = 50;

}  // namespace linewatch::ui

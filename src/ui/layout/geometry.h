#pragma once

#include "platform/extension_context.h"

namespace linewatch::ui {

using linewatch::Size;

/// All lengths are points; y grows downwards.
struct Point {
  double x = 0;
  double y = 0;

  bool operator==(const Point&) const = default;
  Point operator+(const Point& other) const { return {x + other.x, y + other.y}; }
  Point operator-(const Point& other) const { return {x - other.x, y - other.y}; }
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  bool operator==(const Rect&) const = default;

  Point origin() const { return {x, y}; }
  Size size() const { return {width, height}; }
  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  bool isEmpty() const { return !(width > 0 && height > 0); }
  /// The left and top edges belong to the rectangle, the right and bottom ones do not.
  bool contains(const Point& point) const {
    return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
  }
  Rect movedBy(const Point& offset) const { return {x + offset.x, y + offset.y, width, height}; }
};

/// The common part of both rectangles; empty when they do not overlap.
Rect intersection(const Rect& a, const Rect& b);

struct EdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;

  bool operator==(const EdgeInsets&) const = default;
};

enum class LayoutDirection { leftToRight, rightToLeft };

/// The limit of all lengths, so that sums of a few lengths are exact to far below a pixel.
inline constexpr double kLongestLength = 1e7;

/// `length` limited to ±kLongestLength; 0 when it is not a number.
double sanitizedLength(double length);

/// The nearest multiple of 1 / `scale`; half a pixel is rounded up. Differences of less than a millionth of a
/// pixel do not matter. A scale that is not positive counts as 1.
double snappedToPixel(double length, double scale);
/// The smallest multiple of 1 / `scale` that is not less than `length`, apart from a millionth of a pixel.
double ceiledToPixel(double length, double scale);

}  // namespace linewatch::ui

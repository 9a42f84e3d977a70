#include "ui/layout/geometry.h"

#include <algorithm>
#include <cmath>

namespace linewatch::ui {

namespace {

// Rounding makes sums of lengths miss the pixel edge that they should meet.
constexpr double kPixelTolerance = 1e-6;

double usableScale(double scale) { return scale > 0 && std::isfinite(scale) ? scale : 1; }

}  // namespace

Rect intersection(const Rect& a, const Rect& b) {
  const double x = std::max(a.x, b.x);
  const double y = std::max(a.y, b.y);
  return {x, y, std::max(0.0, std::min(a.maxX(), b.maxX()) - x),
          std::max(0.0, std::min(a.maxY(), b.maxY()) - y)};
}

double sanitizedLength(double length) {
  return std::isnan(length) ? 0 : std::clamp(length, -kLongestLength, kLongestLength);
}

double snappedToPixel(double length, double scale) {
  const double pixels = usableScale(scale);
  return std::floor(length * pixels + 0.5 + kPixelTolerance) / pixels;
}

double ceiledToPixel(double length, double scale) {
  const double pixels = usableScale(scale);
  return std::ceil(length * pixels - kPixelTolerance) / pixels;
}

}  // namespace linewatch::ui

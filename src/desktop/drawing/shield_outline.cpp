#include "desktop/drawing/shield_outline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace linewatch::desktop {

namespace {

// In the order of TransitMode.
constexpr std::array kForms = {
    // A bus with rounder corners.
    ShieldForm{.radiusTop = 0.34, .radiusBottom = 0.34, .padding = 0.46},
    ShieldForm{.radiusTop = 0.2, .radiusBottom = 0.2, .padding = 0.44},
    // The front of a tram: a round roof.
    ShieldForm{.radiusTop = 0.46, .radiusBottom = 0.12, .padding = 0.5},
    // A circle, or a pill for a longer text.
    ShieldForm{.radiusTop = 0.5, .radiusBottom = 0.5, .padding = 0.5},
    ShieldForm{.radiusTop = 0.05, .radiusBottom = 0.05, .padding = 0.44},
    // A hull.
    ShieldForm{.leanBottom = 0.26, .radiusTop = 0.1, .radiusBottom = 0.2, .padding = 0.62},
    // A cabin: narrower at the top.
    ShieldForm{.leanTop = 0.26, .radiusTop = 0.2, .radiusBottom = 0.1, .padding = 0.62},
    // Leans forward.
    ShieldForm{.leanTop = 0.26, .slanted = true, .radiusTop = 0.14, .radiusBottom = 0.14, .padding = 0.6},
};

// The distance between the ends of a quarter circle and its control points, in radii.
constexpr double kQuarterCircle = 0.5523;

struct Corner {
  ui::Point point;
  double radius = 0;
};

ui::Point towards(const ui::Point& from, const ui::Point& to, double distance) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  const double share = length > 0 ? std::min(0.5, distance / length) : 0;
  return {from.x + share * (to.x - from.x), from.y + share * (to.y - from.y)};
}

ui::Point between(const ui::Point& a, const ui::Point& b, double share) {
  return {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)};
}

ui::Path softPolygon(const std::array<Corner, 4>& corners) {
  ui::Path path;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Corner& corner = corners[i];
    const ui::Point begin = towards(corner.point, corners[(i + 3) % 4].point, corner.radius);
    const ui::Point end = towards(corner.point, corners[(i + 1) % 4].point, corner.radius);
    if (i == 0) path.moveTo(begin);
    if (i != 0) path.lineTo(begin);
    path.curveTo(between(begin, corner.point, kQuarterCircle), between(end, corner.point, kQuarterCircle),
                 end);
  }
  path.close();
  return path;
}

}  // namespace

const ShieldForm& formOf(TransitMode mode) {
  const auto index = static_cast<std::size_t>(mode);
  return kForms[index < kForms.size() ? index : 0];
}

ui::Path shieldOutline(const ShieldForm& form, const ui::Rect& rect, double inset) {
  const double left = rect.x + inset, right = rect.maxX() - inset;
  const double top = rect.y + inset, bottom = rect.maxY() - inset;
  const double height = bottom - top;
  const double leanTop = form.leanTop * height, leanBottom = form.leanBottom * height;
  const double radiusTop = form.radiusTop * height, radiusBottom = form.radiusBottom * height;
  return softPolygon({{{{left + leanTop, top}, radiusTop},
                       {{form.slanted ? right : right - leanTop, top}, radiusTop},
                       {{form.slanted ? right - leanTop : right - leanBottom, bottom}, radiusBottom},
                       {{left + leanBottom, bottom}, radiusBottom}}});
}

}  // namespace linewatch::desktop

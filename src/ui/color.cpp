#include "ui/color.h"

#include <array>
#include <cstddef>

namespace linewatch::ui {

namespace {

/// In the order of Appearance.
using Shades = std::array<RGBA, 4>;

constexpr RGBA gray(double white, double alpha = 1) { return {white, white, white, alpha}; }

// In the order of SemanticColor. Texts in `label`, `secondaryLabel` and `systemGray` have a contrast of at
// least 4.5 to the background, also where it is highlighted.
constexpr std::array kShades = {
    Shades{gray(0, 0), gray(0, 0), gray(0, 0), gray(0, 0)},
    Shades{gray(0.08), gray(0.96), gray(0), gray(1)},
    Shades{gray(0.08, 0.65), gray(0.96, 0.65), gray(0, 0.88), gray(1, 0.88)},
    Shades{gray(0.08, 0.4), gray(0.96, 0.4), gray(0, 0.7), gray(1, 0.7)},
    Shades{gray(0.08, 0.2), gray(0.96, 0.22), gray(0, 0.7), gray(1, 0.7)},
    Shades{gray(0.97), gray(0.13), gray(1), gray(0)},
    Shades{gray(0, 0.1), gray(1, 0.14), gray(0, 0.16), gray(1, 0.24)},
    Shades{gray(0.38), gray(0.66), gray(0.2), gray(0.85)},
};

}  // namespace

RGBA Color::resolved(Appearance appearance) const {
  if (const RGBA* own = std::get_if<RGBA>(&value_)) return *own;
  const Shades& shades = kShades.at(static_cast<std::size_t>(std::get<SemanticColor>(value_)));
  return shades.at(static_cast<std::size_t>(appearance));
}

}  // namespace linewatch::ui

#include "ui/color.h"

#include <array>
#include <cstddef>

namespace linewatch::ui {

namespace {

struct Shades {
  RGBA light, dark;
};

constexpr RGBA gray(double white, double alpha = 1) { return {white, white, white, alpha}; }

// In the order of SemanticColor.
constexpr std::array kShades = {
    Shades{gray(0, 0), gray(0, 0)},
    Shades{gray(0.08), gray(0.96)},
    Shades{gray(0.08, 0.65), gray(0.96, 0.65)},
    Shades{gray(0.08, 0.4), gray(0.96, 0.4)},
    Shades{gray(0.08, 0.2), gray(0.96, 0.22)},
    Shades{gray(0.97), gray(0.13)},
    Shades{gray(0, 0.1), gray(1, 0.14)},
    Shades{gray(0.45), gray(0.62)},
};

}  // namespace

RGBA Color::resolved(Appearance appearance) const {
  if (const RGBA* own = std::get_if<RGBA>(&value_)) return *own;
  const Shades& shades = kShades.at(static_cast<std::size_t>(std::get<SemanticColor>(value_)));
  return appearance == Appearance::dark ? shades.dark : shades.light;
}

}  // namespace linewatch::ui

#pragma once

#include <cstdint>
#include <variant>

namespace linewatch::ui {

enum class Appearance { light, dark, lightHighContrast, darkHighContrast };

constexpr Appearance appearanceFor(bool isDark, bool isHighContrast) {
  if (isHighContrast) return isDark ? Appearance::darkHighContrast : Appearance::lightHighContrast;
  return isDark ? Appearance::dark : Appearance::light;
}
constexpr bool isDark(Appearance appearance) {
  return appearance == Appearance::dark || appearance == Appearance::darkHighContrast;
}
constexpr bool isHighContrast(Appearance appearance) {
  return appearance == Appearance::lightHighContrast || appearance == Appearance::darkHighContrast;
}

/// Red, green, blue and opacity from 0 to 1, not premultiplied.
struct RGBA {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  bool operator==(const RGBA&) const = default;
};

/// Colours named by their purpose.
enum class SemanticColor : std::uint8_t {
  clear,
  label,
  secondaryLabel,
  tertiaryLabel,
  separator,
  background,
  highlightedBackground,
  systemGray
};

/// A fixed colour or one by purpose, which depends on the appearance when it is drawn.
class Color {
 public:
  // Implicit: both are colours.
  Color(SemanticColor color) : value_(color) {}
  Color(const RGBA& color) : value_(color) {}

  RGBA resolved(Appearance appearance) const;

  bool operator==(const Color&) const = default;

 private:
  std::variant<SemanticColor, RGBA> value_;
};

}  // namespace linewatch::ui

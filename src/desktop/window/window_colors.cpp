#include "desktop/window/window_colors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "desktop/drawing/qt_canvas.h"

namespace linewatch::desktop {

namespace {

/// Texts and backgrounds of a desktop theme for high contrast are black and white, or nearly so. In other
/// themes at least one of them is not.
constexpr double kHighContrast = 20;

struct WindowShades {
  /// Each has a contrast of at least 4.5 to the card's background.
  ui::RGBA alarm, link;
  /// Qt computes the other colours of a palette from these.
  QRgb window, highlight, highlightedText;
};

// In the order of Appearance.
constexpr std::array kWindowShades = {
    WindowShades{{0.76, 0.09, 0.09}, {0.04, 0.34, 0.82}, 0xfff0f0f0, 0xff1f6fd6, 0xffffffff},
    WindowShades{{1, 0.52, 0.49}, {0.54, 0.71, 0.97}, 0xff2d2d2d, 0xff2f6cc0, 0xffffffff},
    WindowShades{{0.6, 0, 0}, {0, 0.15, 0.6}, 0xffffffff, 0xff00268f, 0xffffffff},
    WindowShades{{1, 0.68, 0.65}, {0.72, 0.84, 1}, 0xff000000, 0xffffd60a, 0xff000000},
};

const WindowShades& shadesOf(ui::Appearance appearance) {
  return kWindowShades.at(static_cast<std::size_t>(appearance));
}

double luminance(const QColor& color) {
  const auto linear = [](double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

}  // namespace

double contrastOf(const QColor& a, const QColor& b) {
  const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

ui::Appearance appearanceOf(const QPalette& palette) {
  const QColor window = palette.color(QPalette::Window), text = palette.color(QPalette::WindowText);
  return ui::appearanceFor(luminance(window) < luminance(text), contrastOf(window, text) >= kHighContrast);
}

QPalette windowPalette(ui::Appearance appearance) {
  const WindowShades& shades = shadesOf(appearance);
  QPalette palette((QColor(shades.window)));
  palette.setColor(QPalette::Base, qtColor(ui::SemanticColor::background, appearance));
  palette.setColor(QPalette::Highlight, shades.highlight);
  palette.setColor(QPalette::HighlightedText, shades.highlightedText);
  palette.setColor(QPalette::PlaceholderText, qtColor(ui::SemanticColor::secondaryLabel, appearance));
  palette.setColor(QPalette::Link, qtColor(shades.link, appearance));
  return palette;
}

QPalette cardPalette(const QPalette& desktop) {
  const ui::Appearance appearance = appearanceOf(desktop);
  QPalette palette = desktop;
  const QColor label = qtColor(ui::SemanticColor::label, appearance);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
    palette.setColor(role, label);
  for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
    palette.setColor(role, qtColor(ui::SemanticColor::background, appearance));
  palette.setColor(kOutlineRole, qtColor(ui::SemanticColor::separator, appearance));
  palette.setColor(kFaintRole, qtColor(ui::SemanticColor::secondaryLabel, appearance));
  palette.setColor(kAlarmRole, qtColor(shadesOf(appearance).alarm, appearance));
  palette.setColor(QPalette::Link, qtColor(shadesOf(appearance).link, appearance));
  return palette;
}

}  // namespace linewatch::desktop

#include "desktop/window/window_colors.h"

#include "desktop/drawing/qt_canvas.h"

namespace linewatch::desktop {

namespace {

// Each has a contrast ratio of at least 4.5 to the card's background.
constexpr ui::RGBA kLightAlarm{0.76, 0.09, 0.09};
constexpr ui::RGBA kDarkAlarm{1, 0.52, 0.49};
constexpr ui::RGBA kLightLink{0.04, 0.34, 0.82};
constexpr ui::RGBA kDarkLink{0.54, 0.71, 0.97};

// Qt computes the other colours of a palette from these.
constexpr QRgb kLightWindow = 0xfff0f0f0;
constexpr QRgb kDarkWindow = 0xff2d2d2d;
constexpr QRgb kLightHighlight = 0xff1f6fd6;
constexpr QRgb kDarkHighlight = 0xff2f6cc0;

}  // namespace

ui::Appearance appearanceOf(const QPalette& palette) {
  const bool isDark =
      palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
  return isDark ? ui::Appearance::dark : ui::Appearance::light;
}

QPalette windowPalette(ui::Appearance appearance) {
  const bool isDark = appearance == ui::Appearance::dark;
  QPalette palette(QColor(isDark ? kDarkWindow : kLightWindow));
  palette.setColor(QPalette::Base, qtColor(ui::SemanticColor::background, appearance));
  palette.setColor(QPalette::Highlight, isDark ? kDarkHighlight : kLightHighlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, qtColor(ui::SemanticColor::secondaryLabel, appearance));
  palette.setColor(QPalette::Link, qtColor(isDark ? kDarkLink : kLightLink, appearance));
  return palette;
}

QPalette cardPalette(const QPalette& desktop) {
  const ui::Appearance appearance = appearanceOf(desktop);
  const bool isDark = appearance == ui::Appearance::dark;
  QPalette palette = desktop;
  const QColor label = qtColor(ui::SemanticColor::label, appearance);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
    palette.setColor(role, label);
  for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
    palette.setColor(role, qtColor(ui::SemanticColor::background, appearance));
  palette.setColor(kOutlineRole, qtColor(ui::SemanticColor::separator, appearance));
  palette.setColor(kFaintRole, qtColor(ui::SemanticColor::secondaryLabel, appearance));
  palette.setColor(kAlarmRole, qtColor(isDark ? kDarkAlarm : kLightAlarm, appearance));
  palette.setColor(QPalette::Link, qtColor(isDark ? kDarkLink : kLightLink, appearance));
  return palette;
}

}  // namespace linewatch::desktop

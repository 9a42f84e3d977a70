#include "desktop/window/window_colors.h"

#include "desktop/drawing/qt_canvas.h"

namespace linewatch::desktop {

ui::Appearance appearanceOf(const QPalette& palette) {
  const bool isDark =
      palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
  return isDark ? ui::Appearance::dark : ui::Appearance::light;
}

QPalette cardPalette(const QPalette& desktop) {
  const ui::Appearance appearance = appearanceOf(desktop);
  QPalette palette = desktop;
  const QColor label = qtColor(ui::SemanticColor::label, appearance);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
    palette.setColor(role, label);
  for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base})
    palette.setColor(role, qtColor(ui::SemanticColor::background, appearance));
  return palette;
}

}  // namespace linewatch::desktop

#pragma once

#include <QColor>
#include <QPalette>

#include "ui/color.h"

namespace linewatch::desktop {

/// The roles in a card's palette for lines, for less important texts, and for warnings.
inline constexpr QPalette::ColorRole kOutlineRole = QPalette::Mid;
inline constexpr QPalette::ColorRole kFaintRole = QPalette::PlaceholderText;
inline constexpr QPalette::ColorRole kAlarmRole = QPalette::BrightText;

/// Whether the palette is light or dark.
ui::Appearance appearanceOf(const QPalette& palette);

/// A palette for all windows, for a desktop that has no palette of this appearance.
QPalette windowPalette(ui::Appearance appearance);

/// The desktop's palette with the widget's text and background colours.
QPalette cardPalette(const QPalette& desktop);

}  // namespace linewatch::desktop

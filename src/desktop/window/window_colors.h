#pragma once

#include <QColor>
#include <QPalette>

#include "ui/color.h"

namespace linewatch::desktop {

/// The palette's roles for lines, for secondary texts and for warnings.
inline constexpr QPalette::ColorRole kOutlineRole = QPalette::Mid;
inline constexpr QPalette::ColorRole kFaintRole = QPalette::PlaceholderText;
inline constexpr QPalette::ColorRole kAlarmRole = QPalette::BrightText;

/// Whether the palette is light or dark.
ui::Appearance appearanceOf(const QPalette& palette);

/// A palette for all windows, if the desktop has none of this appearance.
QPalette windowPalette(ui::Appearance appearance);

/// The desktop's palette with the widget's text and background colours.
QPalette cardPalette(const QPalette& desktop);

}  // namespace linewatch::desktop

#pragma once

#include <QColor>
#include <QPalette>

#include "ui/color.h"

namespace linewatch::desktop {

/// The palette's roles for lines, for secondary texts and for warnings.
inline constexpr QPalette::ColorRole kOutlineRole = QPalette::Mid;
inline constexpr QPalette::ColorRole kFaintRole = QPalette::PlaceholderText;
inline constexpr QPalette::ColorRole kAlarmRole = QPalette::BrightText;

/// The contrast ratio of two opaque colours, from 1 to 21, as WCAG 2 defines it.
double contrastOf(const QColor& a, const QColor& b);

/// Whether the palette is light or dark, and whether it is one for high contrast.
ui::Appearance appearanceOf(const QPalette& palette);

/// A palette for all windows, if the desktop has none of this appearance.
QPalette windowPalette(ui::Appearance appearance);

/// The desktop's palette with the widget's text and background colours.
QPalette cardPalette(const QPalette& desktop);

}  // namespace linewatch::desktop

#pragma once

#include <QColor>
#include <QPalette>

#include "ui/color.h"

namespace linewatch::desktop {

/// The roles in a card's palette of lines, of texts that stand back, and of those that nobody is to miss.
inline constexpr QPalette::ColorRole kOutlineRole = QPalette::Mid;
inline constexpr QPalette::ColorRole kFaintRole = QPalette::PlaceholderText;
inline constexpr QPalette::ColorRole kAlarmRole = QPalette::BrightText;

/// Light or dark, as the desktop's palette is.
ui::Appearance appearanceOf(const QPalette& palette);

/// A palette for all windows of a desktop that has none like it.
QPalette windowPalette(ui::Appearance appearance);

/// The palette with the texts and the background of the widget in place of the desktop's.
QPalette cardPalette(const QPalette& desktop);

}  // namespace linewatch::desktop

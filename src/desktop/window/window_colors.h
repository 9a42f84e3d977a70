#pragma once

#include <QColor>
#include <QPalette>

#include "platform/ui/color.h"

namespace linewatch::desktop {

/// Light or dark, as the desktop's palette is.
ui::Appearance appearanceOf(const QPalette& palette);

/// The palette with the texts and the background of the widget in place of the desktop's.
QPalette cardPalette(const QPalette& desktop);

}  // namespace linewatch::desktop

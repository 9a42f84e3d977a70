#pragma once

#include <algorithm>
#include <cmath>

#include "platform/extension_context.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

/// The size of the compact widget at the default text size, in points. Every row of the expanded widget has
/// its height.
inline constexpr Size kCompactSize{359, 110};

/// The height of the compact widget, in points. It grows with larger text but does not shrink with smaller
/// text, so that rows are easy to tap.
inline double compactHeightAt(ui::TextSizeCategory textSize) {
  return std::round(kCompactSize.height * std::max(1.0, ui::scaleFactor(ui::TextStyle::body, textSize)));
}

}  // namespace linewatch::desktop

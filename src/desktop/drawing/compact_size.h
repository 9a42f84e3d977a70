#pragma once

#include <algorithm>
#include <cmath>

#include "platform/extension_context.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

/// The compact widget's size at the default text size, in points. Every row has its height.
inline constexpr Size kCompactSize{359, 110};

/// The compact widget's height: larger text makes rows higher, but smaller text does not make them lower,
/// since rows must be easy to tap.
inline double compactHeightAt(ui::TextSizeCategory textSize) {
  return std::round(kCompactSize.height * std::max(1.0, ui::scaleFactor(ui::TextStyle::body, textSize)));
}

}  // namespace linewatch::desktop

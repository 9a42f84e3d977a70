#pragma once

#include <algorithm>
#include <cmath>

#include "platform/extension_context.h"
#include "ui/text_style.h"

namespace linewatch::desktop {

/// The compact widget at the usual text size, in points. Its height is that of each row.
inline constexpr Size kCompactSize{359, 110};

/// As high as larger text needs it; smaller text does not make rows lower, for they are there to be tapped.
inline double compactHeightAt(ui::TextSizeCategory textSize) {
  return std::round(kCompactSize.height * std::max(1.0, ui::scaleFactor(ui::TextStyle::body, textSize)));
}

}  // namespace linewatch::desktop

#pragma once

#include "platform/artwork.h"
#include "ui/canvas.h"

namespace linewatch::desktop {

/// The shape of a mode's shields. Each mode has its own, so that modes can be told apart without colours.
struct ShieldForm {
  /// How far the left and right ends lean inwards at the top and at the bottom, as fractions of the height.
  double leanTop = 0;
  double leanBottom = 0;
  /// Whether both ends lean in the same direction, as in a parallelogram.
  bool slanted = false;
  double radiusTop = 0;
  double radiusBottom = 0;
  /// The space on both sides of the text, as a multiple of the text size.
  double padding = 0;
};

const ShieldForm& formOf(TransitMode mode);
/// The outline of the shape, `inset` points inside the rectangle.
ui::Path shieldOutline(const ShieldForm& form, const ui::Rect& rect, double inset);

}  // namespace linewatch::desktop

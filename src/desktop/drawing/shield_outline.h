#pragma once

#include "platform/artwork.h"
#include "ui/canvas.h"

namespace linewatch::desktop {

/// The shape of a mode's shields. Each mode has its own shape, so that colours are not needed to tell modes
/// apart.
struct ShieldForm {
  /// How far the left and right ends lean inwards at the top and at the bottom, as fractions of the shield's
  /// height.
  double leanTop = 0;
  double leanBottom = 0;
  /// Whether the right end leans outwards where the left one leans inwards.
  bool slanted = false;
  double radiusTop = 0;
  double radiusBottom = 0;
  /// Room on both sides of the text, as a multiple of the text size.
  double padding = 0;
};

const ShieldForm& formOf(TransitMode mode);
/// The outline of the form, `inset` points inside the rectangle.
ui::Path shieldOutline(const ShieldForm& form, const ui::Rect& rect, double inset);

}  // namespace linewatch::desktop

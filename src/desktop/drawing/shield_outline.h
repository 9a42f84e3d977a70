#pragma once

#include "platform/artwork.h"
#include "ui/canvas.h"

namespace linewatch::desktop {

/// The shape of a mode's shields, so that modes can be told apart where colours cannot.
struct ShieldForm {
  /// In shares of the shield's height: how much the left and right ends lean in at the top and at the bottom.
  double leanTop = 0;
  double leanBottom = 0;
  /// Whether the right end leans out where the left one leans in.
  bool slanted = false;
  double radiusTop = 0;
  double radiusBottom = 0;
  /// In shares of the text's size: room on both sides of the text.
  double padding = 0;
};

const ShieldForm& formOf(TransitMode mode);
/// The form in a rectangle, `inset` inside of its edges.
ui::Path shieldOutline(const ShieldForm& form, const ui::Rect& rect, double inset);

}  // namespace linewatch::desktop

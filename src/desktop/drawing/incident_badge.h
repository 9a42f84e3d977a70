#pragma once

#include <memory>

#include "ui/image.h"

namespace linewatch::desktop {

/// A shield or icon with a no-entry sign at its trailing top corner: nothing runs on the line. The sign
/// covers the room beside the text, never the text itself, and makes the image wider.
class IncidentBadge final : public ui::Image {
 public:
  /// `image` is not null. `isMirrored`: the trailing side is the left one. `scale`: pixels a point.
  IncidentBadge(std::shared_ptr<const ui::Image> image, bool isMirrored, double scale);

  ui::Size size() const override { return size_; }
  /// Draws the image in its own size, in the middle of the rectangle.
  void draw(ui::Canvas& canvas, const ui::Rect& rect) const override;

 private:
  void drawSign(ui::Canvas& canvas, const ui::Point& center) const;

  std::shared_ptr<const ui::Image> image_;
  bool isMirrored_;
  double diameter_ = 0;
  /// How far the sign stands out beside the image.
  double overhang_ = 0;
  ui::Size size_;
};

}  // namespace linewatch::desktop

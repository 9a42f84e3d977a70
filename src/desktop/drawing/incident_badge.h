#pragma once

#include <memory>

#include "ui/image.h"

namespace linewatch::desktop {

/// A shield or icon with a no-entry sign at its trailing top corner, for a line without service. The sign
/// never covers the text. It makes the image wider.
class IncidentBadge final : public ui::Image {
 public:
  /// `image` must not be null. `isMirrored`: the sign is at the left. `scale`: pixels per point.
  IncidentBadge(std::shared_ptr<const ui::Image> image, bool isMirrored, double scale);

  ui::Size size() const override { return size_; }
  /// Draws the image in its own size, in the middle of the rectangle.
  void draw(ui::Canvas& canvas, const ui::Rect& rect) const override;

 private:
  void drawSign(ui::Canvas& canvas, const ui::Point& center) const;

  std::shared_ptr<const ui::Image> image_;
  bool isMirrored_;
  double diameter_ = 0;
  /// The width of the sign's part beside the image, in points.
  double overhang_ = 0;
  ui::Size size_;
};

}  // namespace linewatch::desktop

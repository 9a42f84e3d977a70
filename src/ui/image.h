#pragma once

#include <memory>
#include <string_view>

#include "ui/canvas.h"
#include "ui/layout/geometry.h"

namespace linewatch::ui {

/// Something with a size that can be drawn: a picture of the platform's, or a drawing. Immutable.
class Image {
 public:
  virtual ~Image() = default;

  /// Points.
  virtual Size size() const = 0;
  /// By default the canvas knows how.
  virtual void draw(Canvas& canvas, const Rect& rect) const { canvas.drawImage(*this, rect); }
};

/// The pictures that come with the widget. Main thread.
class ImageSource {
 public:
  virtual ~ImageSource() = default;

  /// Null when there is no such picture; the first time that a name is missed is logged.
  virtual std::shared_ptr<const Image> imageNamed(std::string_view name) = 0;
};

}  // namespace linewatch::ui

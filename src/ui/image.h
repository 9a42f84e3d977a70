#pragma once

#include <memory>
#include <string_view>

#include "ui/canvas.h"
#include "ui/layout/geometry.h"

namespace linewatch::ui {

/// A picture of the platform or a drawing. Immutable.
class Image {
 public:
  virtual ~Image() = default;

  /// Points.
  virtual Size size() const = 0;
  /// By default the canvas draws it.
  virtual void draw(Canvas& canvas, const Rect& rect) const { canvas.drawImage(*this, rect); }
};

/// The widget's own pictures. Main thread.
class ImageSource {
 public:
  virtual ~ImageSource() = default;

  /// Null when there is no such picture; that is logged once per name.
  virtual std::shared_ptr<const Image> imageNamed(std::string_view name) = 0;
};

}  // namespace linewatch::ui

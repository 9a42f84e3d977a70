#pragma once

#include <cstdint>
#include <vector>

#include "ui/color.h"
#include "ui/layout/geometry.h"
#include "ui/text_engine.h"

namespace linewatch::ui {

class Image;

/// An outline of lines and cubic curves.
struct Path {
  enum class Verb : std::uint8_t { move, line, curve, close };

  struct Element {
    Verb verb = Verb::move;
    /// The end of the element; unused by `close`.
    Point end;
    /// Used by curves only.
    Point control1;
    Point control2;

    bool operator==(const Element&) const = default;
  };

  std::vector<Element> elements;

  Path& moveTo(Point point);
  Path& lineTo(Point point);
  Path& curveTo(Point control1, Point control2, Point end);
  Path& close();

  bool operator==(const Path&) const = default;
};

/// The surface that views draw on. Coordinates are in the drawing view, in points. Main thread.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual Appearance appearance() const = 0;
  /// Pixels per point.
  virtual double scale() const = 0;

  /// Each `save` has a `restore`, which undoes the translations, clips and opacities in between.
  virtual void save() = 0;
  virtual void restore() = 0;
  virtual void translate(const Point& offset) = 0;
  /// Clips later drawing to `rect`.
  virtual void clip(const Rect& rect) = 0;
  /// Multiplies the opacity of later drawing by `alpha`.
  virtual void multiplyAlpha(double alpha) = 0;

  virtual void fillRect(const Rect& rect, const Color& color) = 0;
  /// A radius is limited to half the shorter side.
  virtual void fillRoundedRect(const Rect& rect, double radius, const Color& color) = 0;
  virtual void fillPath(const Path& path, const Color& color) = 0;
  /// Draws a layout of the same platform's text engine with its top left corner at `origin`. Runs without a
  /// color are drawn in `color`.
  virtual void drawText(const TextLayout& layout, const Point& origin, const Color& color) = 0;
  /// Draws an image of the same platform's image source, stretched to `rect`.
  virtual void drawImage(const Image& image, const Rect& rect) = 0;
};

}  // namespace linewatch::ui

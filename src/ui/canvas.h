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
    /// Where the element ends; not used by `close`.
    Point end;
    /// Of curves only.
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

/// Where views draw. Coordinates are points of the view that draws. Main thread.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual Appearance appearance() const = 0;
  /// Pixels a point.
  virtual double scale() const = 0;

  /// Every `save` is followed by one `restore`, which takes back what was said in between.
  virtual void save() = 0;
  virtual void restore() = 0;
  virtual void translate(const Point& offset) = 0;
  /// Nothing is drawn outside of `rect` from here on.
  virtual void clip(const Rect& rect) = 0;
  /// Everything is drawn with its opacity times `alpha` from here on.
  virtual void multiplyAlpha(double alpha) = 0;

  virtual void fillRect(const Rect& rect, const Color& color) = 0;
  /// A radius of more than half a side counts as half of it.
  virtual void fillRoundedRect(const Rect& rect, double radius, const Color& color) = 0;
  virtual void fillPath(const Path& path, const Color& color) = 0;
  /// A layout of the same platform's text engine with its top left corner at `origin`; runs without a colour
  /// of their own in `color`.
  virtual void drawText(const TextLayout& layout, const Point& origin, const Color& color) = 0;
  /// An image of the same platform's image source, stretched to `rect`.
  virtual void drawImage(const Image& image, const Rect& rect) = 0;
};

}  // namespace linewatch::ui

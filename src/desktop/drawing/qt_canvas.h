#pragma once

#include <QColor>
#include <QPainter>
#include <optional>
#include <vector>

#include "ui/canvas.h"

namespace linewatch::desktop {

QColor qtColor(const ui::Color& color, ui::Appearance appearance);

/// The capabilities of the paint device; the canvas replaces the missing ones.
enum class CanvasKind {
  /// All capabilities: a device with pixels.
  full,
  /// Text, but not glyphs that are images, such as emoji. They are drawn as images.
  text,
  /// Neither clipping nor text. Shapes are cut to the clip before they are drawn, and glyphs are drawn as
  /// outlines, or as images if they are images.
  outlines
};

/// A canvas on a painter whose unit is a point. The painter must outlive the canvas, and nothing else may use
/// it meanwhile.
class QtCanvas final : public ui::Canvas {
 public:
  QtCanvas(QPainter& painter, ui::Appearance appearance, double scale, CanvasKind kind = CanvasKind::full);

  ui::Appearance appearance() const override { return appearance_; }
  double scale() const override { return scale_; }

  void save() override;
  void restore() override;
  void translate(const ui::Point& offset) override;
  void clip(const ui::Rect& rect) override;
  void multiplyAlpha(double alpha) override;

  void fillRect(const ui::Rect& rect, const ui::Color& color) override;
  void fillRoundedRect(const ui::Rect& rect, double radius, const ui::Color& color) override;
  void fillPath(const ui::Path& path, const ui::Color& color) override;
  void drawText(const ui::TextLayout& layout, const ui::Point& origin, const ui::Color& color) override;
  void drawImage(const ui::Image& image, const ui::Rect& rect) override;

 private:
  QColor resolved(const ui::Color& color) const { return qtColor(color, appearance_); }
  void fill(const QPainterPath& path, const QColor& color);
  /// The part of the plane that is not clipped away, in the painter's present units; absent: all of it.
  std::optional<QRectF> visible() const;
  void drawGlyphs(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color);
  void drawOutlines(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color);
  void drawAsImage(const QGlyphRun& glyphs, const QPointF& origin);

  QPainter& painter_;
  ui::Appearance appearance_;
  double scale_;
  CanvasKind kind_;
  /// For CanvasKind::outlines only: the clips of all open `save` calls, then the present clip, in device
  /// units.
  std::vector<std::optional<QRectF>> clips_;
};

}  // namespace linewatch::desktop

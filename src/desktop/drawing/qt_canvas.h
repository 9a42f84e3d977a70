#pragma once

#include <QColor>
#include <QPainter>
#include <optional>
#include <vector>

#include "ui/canvas.h"

namespace linewatch::desktop {

QColor qtColor(const ui::Color& color, ui::Appearance appearance);

/// The capabilities of the paint device. The canvas works around missing ones.
enum class CanvasKind {
  /// A device that consists of pixels: all capabilities.
  full,
  /// Text, but no glyphs that are images, such as emoji: the canvas draws them as images.
  text,
  /// No clipping and no text. The canvas cuts shapes to the clip, and draws glyphs as outlines or images.
  outlines
};

/// A canvas on a painter whose unit is a point. The painter must outlive the canvas and must not be used by
/// others in the meantime.
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
  /// The clip, in the painter's present units; absent without one.
  std::optional<QRectF> visible() const;
  void drawGlyphs(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color);
  void drawOutlines(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color);
  void drawAsImage(const QGlyphRun& glyphs, const QPointF& origin);

  QPainter& painter_;
  ui::Appearance appearance_;
  double scale_;
  CanvasKind kind_;
  /// Only for CanvasKind::outlines: the clip at each open `save` call, then the present clip, in device
  /// units.
  std::vector<std::optional<QRectF>> clips_;
};

}  // namespace linewatch::desktop

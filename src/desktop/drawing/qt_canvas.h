#pragma once

#include <QColor>
#include <QPainter>
#include <optional>
#include <vector>

#include "ui/canvas.h"

namespace linewatch::desktop {

QColor qtColor(const ui::Color& color, ui::Appearance appearance);

/// What a canvas does with what its paint device cannot.
enum class CanvasKind {
  /// The device has pixels and does everything.
  full,
  /// The device draws glyphs as text: those that are pictures, as of emoji, are drawn as images.
  text,
  /// The device knows neither clipping nor how a text is shaped: what is clipped is cut before it is drawn,
  /// and glyphs are drawn as outlines, or as images where they are pictures.
  outlines
};

/// A canvas over a painter, whose units must be points; the painter must outlive it. A painter is not shared:
/// between two calls it is as the canvas left it.
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
  /// The part of the painter's plane that is not clipped away, in its present units; absent: all of it.
  std::optional<QRectF> visible() const;
  void drawGlyphs(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color);
  void drawOutlines(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color);
  void drawAsImage(const QGlyphRun& glyphs, const QPointF& origin);

  QPainter& painter_;
  ui::Appearance appearance_;
  double scale_;
  CanvasKind kind_;
  /// Of the outlines kind only, in the painter's units; one for each open `save` and the one that holds now.
  std::vector<std::optional<QRectF>> clips_;
};

}  // namespace linewatch::desktop

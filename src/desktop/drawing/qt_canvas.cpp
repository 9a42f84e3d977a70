#include "desktop/drawing/qt_canvas.h"

#include <QGlyphRun>
#include <QPainterPath>
#include <QRawFont>
#include <algorithm>
#include <cmath>

#include "desktop/drawing/svg_drawing.h"
#include "desktop/drawing/text_glyphs.h"
#include "ui/text_engine.h"

namespace linewatch::desktop {

namespace {

QPointF qtPoint(const ui::Point& point) { return {point.x, point.y}; }

QRectF qtRect(const ui::Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

QPainterPath qtPath(const ui::Path& path) {
  QPainterPath result;
  result.setFillRule(Qt::WindingFill);
  for (const ui::Path::Element& element : path.elements) {
    switch (element.verb) {
      case ui::Path::Verb::move:
        result.moveTo(qtPoint(element.end));
        break;
      case ui::Path::Verb::line:
        result.lineTo(qtPoint(element.end));
        break;
      case ui::Path::Verb::curve:
        result.cubicTo(qtPoint(element.control1), qtPoint(element.control2), qtPoint(element.end));
        break;
      case ui::Path::Verb::close:
        result.closeSubpath();
        break;
    }
  }
  return result;
}

// Pixels per point of glyphs that are images. More than this blurs them.
constexpr double kPixelsOfGlyphPictures = 4;

/// Whether the font's glyphs are images, as in emoji fonts. Qt draws these only on devices that consist of
/// pixels.
bool hasPictures(const QRawFont& font) {
  return !font.fontTable("CBLC").isEmpty() || !font.fontTable("sbix").isEmpty();
}

/// The rectangle of glyph images, relative to the start of the baseline. The font gives only the start of
/// each image, so the rest is an estimate.
QRectF roomFor(const QGlyphRun& glyphs) {
  const double size = glyphs.rawFont().pixelSize();
  QRectF room;
  for (const QPointF& position : glyphs.positions()) {
    room |= QRectF(position.x(), position.y() - 1.25 * size, 1.5 * size, 1.75 * size);
  }
  return QRectF(room.toAlignedRect());
}

}  // namespace

QColor qtColor(const ui::Color& color, ui::Appearance appearance) {
  const ui::RGBA rgba = color.resolved(appearance);
  const auto channel = [](double value) {
    return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
  };
  return {channel(rgba.red), channel(rgba.green), channel(rgba.blue), channel(rgba.alpha)};
}

QtCanvas::QtCanvas(QPainter& painter, ui::Appearance appearance, double scale, CanvasKind kind)
    : painter_(painter), appearance_(appearance), scale_(scale), kind_(kind), clips_(1) {
  painter_.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
}

void QtCanvas::save() {
  painter_.save();
  clips_.push_back(clips_.back());
}

void QtCanvas::restore() {
  clips_.pop_back();
  painter_.restore();
}

void QtCanvas::translate(const ui::Point& offset) { painter_.translate(qtPoint(offset)); }

void QtCanvas::clip(const ui::Rect& rect) {
  if (kind_ != CanvasKind::outlines) return painter_.setClipRect(qtRect(rect), Qt::IntersectClip);
  const QRectF onDevice = painter_.transform().mapRect(qtRect(rect));
  std::optional<QRectF>& clip = clips_.back();
  clip = clip ? clip->intersected(onDevice) : onDevice;
}

void QtCanvas::multiplyAlpha(double alpha) { painter_.setOpacity(painter_.opacity() * alpha); }

std::optional<QRectF> QtCanvas::visible() const {
  const std::optional<QRectF>& clip = clips_.back();
  if (!clip) return std::nullopt;
  return painter_.transform().inverted().mapRect(*clip);
}

void QtCanvas::fill(const QPainterPath& path, const QColor& color) {
  if (color.alpha() == 0) return;
  const std::optional<QRectF> window = visible();
  if (!window || window->contains(path.boundingRect())) return painter_.fillPath(path, color);
  if (!window->intersects(path.boundingRect())) return;
  QPainterPath edges;
  edges.addRect(*window);
  painter_.fillPath(path.intersected(edges), color);
}

void QtCanvas::fillRect(const ui::Rect& rect, const ui::Color& color) {
  QPainterPath path;
  path.addRect(qtRect(rect));
  fill(path, resolved(color));
}

void QtCanvas::fillRoundedRect(const ui::Rect& rect, double radius, const ui::Color& color) {
  const double fitting = std::clamp(radius, 0.0, std::min(rect.width, rect.height) / 2);
  QPainterPath path;
  path.addRoundedRect(qtRect(rect), fitting, fitting);
  fill(path, resolved(color));
}

void QtCanvas::fillPath(const ui::Path& path, const ui::Color& color) { fill(qtPath(path), resolved(color)); }

void QtCanvas::drawText(const ui::TextLayout& layout, const ui::Point& origin, const ui::Color& color) {
  if (!layout.glyphs) return;
  const auto& lines = static_cast<const TextGlyphs*>(layout.glyphs.get())->lines();
  for (std::size_t i = 0; i < std::min(lines.size(), layout.lines.size()); ++i) {
    const QPointF beginOfBaseline = qtPoint(origin) + QPointF(layout.lines[i].x, layout.lines[i].baseline);
    for (const ColoredGlyphs& run : lines[i]) {
      drawGlyphs(run.glyphs, beginOfBaseline, resolved(run.color.value_or(color)));
    }
  }
}

void QtCanvas::drawGlyphs(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color) {
  if (kind_ != CanvasKind::full && hasPictures(glyphs.rawFont())) return drawAsImage(glyphs, origin);
  if (kind_ == CanvasKind::outlines) return drawOutlines(glyphs, origin, color);
  painter_.setPen(color);
  painter_.drawGlyphRun(origin, glyphs);
}

void QtCanvas::drawOutlines(const QGlyphRun& glyphs, const QPointF& origin, const QColor& color) {
  const QRawFont font = glyphs.rawFont();
  const QList<quint32> indexes = glyphs.glyphIndexes();
  const QList<QPointF> positions = glyphs.positions();
  QPainterPath outline;
  outline.setFillRule(Qt::WindingFill);
  for (qsizetype i = 0; i < indexes.size(); ++i) {
    outline.addPath(font.pathForGlyph(indexes[i]).translated(origin + positions[i]));
  }
  fill(outline, color);
}

void QtCanvas::drawAsImage(const QGlyphRun& glyphs, const QPointF& origin) {
  const QRectF box = roomFor(glyphs);
  const std::optional<QRectF> window = visible();
  if (window && !window->intersects(box.translated(origin))) return;
  QImage image((box.size() * kPixelsOfGlyphPictures).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.scale(kPixelsOfGlyphPictures, kPixelsOfGlyphPictures);
  painter.drawGlyphRun(-box.topLeft(), glyphs);
  painter.end();
  painter_.drawImage(box.translated(origin), image);
}

void QtCanvas::drawImage(const ui::Image& image, const ui::Rect& rect) {
  const auto* drawing = dynamic_cast<const SvgDrawing*>(&image);
  const std::optional<QRectF> window = visible();
  if (drawing == nullptr || (window && !window->intersects(qtRect(rect)))) return;
  drawing->paint(painter_, rect, appearance_);
}

}  // namespace linewatch::desktop

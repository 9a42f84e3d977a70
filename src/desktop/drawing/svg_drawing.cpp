#include "desktop/drawing/svg_drawing.h"

#include <QPainter>
#include <QSvgRenderer>
#include <utility>

#include "desktop/drawing/qt_canvas.h"

namespace linewatch::desktop {

namespace {

QByteArray colored(QByteArray drawing, ui::Appearance appearance) {
  const QColor label = qtColor(ui::SemanticColor::label, appearance);
  return drawing.replace("currentColor", label.name().toLatin1());
}

}  // namespace

SvgDrawing::SvgDrawing(QByteArray light, QByteArray dark) : light_(std::move(light)), dark_(std::move(dark)) {
  const QSizeF size = renderer(ui::Appearance::light).defaultSize();
  size_ = {size.width(), size.height()};
}

SvgDrawing::~SvgDrawing() = default;

QSvgRenderer& SvgDrawing::renderer(ui::Appearance appearance) const {
  auto& renderer = renderers_.at(static_cast<std::size_t>(appearance));
  if (!renderer) {
    const bool hasDark = ui::isDark(appearance) && !dark_.isEmpty();
    renderer = std::make_unique<QSvgRenderer>(colored(hasDark ? dark_ : light_, appearance));
  }
  return *renderer;
}

void SvgDrawing::paint(QPainter& painter, const ui::Rect& rect, ui::Appearance appearance) const {
  renderer(appearance).render(&painter, QRectF(rect.x, rect.y, rect.width, rect.height));
}

}  // namespace linewatch::desktop

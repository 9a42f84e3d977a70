#include "desktop/window/focus_ring.h"

#include <QPen>

namespace linewatch::desktop {

namespace {

// Points.
constexpr double kRingWidth = 2;
constexpr double kRingRadius = 6;

}  // namespace

void paintFocusRing(QPainter& painter, const QRectF& rect, const QPalette& palette) {
  painter.setRenderHint(QPainter::Antialiasing);
  // Unlike the highlight, links are legible on the card with every palette.
  painter.setPen(QPen(palette.color(QPalette::Link), kRingWidth));
  painter.setBrush(Qt::NoBrush);
  constexpr double kInset = kRingWidth / 2;
  painter.drawRoundedRect(rect.adjusted(kInset, kInset, -kInset, -kInset), kRingRadius, kRingRadius);
}

}  // namespace linewatch::desktop

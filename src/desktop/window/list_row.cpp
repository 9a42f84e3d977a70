#include "desktop/window/list_row.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr double kRowRadius = 8;
constexpr float kRowHoverAlpha = 0.06F;

}  // namespace

void paintRowState(QPainter& painter, const QStyleOptionViewItem& option) {
  const QRectF row = QRectF(option.rect).adjusted(4, 1, -4, -1);
  if (option.state & QStyle::State_MouseOver) {
    QColor color = option.palette.color(QPalette::Text);
    color.setAlphaF(kRowHoverAlpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(row, kRowRadius, kRowRadius);
  }
  if (!(option.state & QStyle::State_HasFocus)) return;
  painter.setPen(QPen(option.palette.color(QPalette::Link), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(row, kRowRadius, kRowRadius);
}

}  // namespace linewatch::desktop

#include "desktop/window/outlined_field.h"

#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr double kFieldRadius = 8;

}  // namespace

void paintFieldOutline(QPainter& painter, const QRect& rect, const QPalette& palette, bool hasFocus) {
  painter.setRenderHint(QPainter::Antialiasing);
  const double width = hasFocus ? 2 : 1;
  // Unlike the highlight, links are legible on the card with every palette.
  painter.setPen(QPen(palette.color(hasFocus ? QPalette::Link : kFaintRole), width));
  painter.setBrush(Qt::NoBrush);
  const double inset = width / 2;
  painter.drawRoundedRect(QRectF(rect).adjusted(inset, inset, -inset, -inset), kFieldRadius, kFieldRadius);
}

OutlinedField::OutlinedField() {
  setFrame(false);
  setTextMargins(kFieldInset, kFieldInset, kFieldInset, kFieldInset);
}

void OutlinedField::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  QPainter painter(this);
  paintFieldOutline(painter, rect(), palette(), hasFocus());
}

}  // namespace linewatch::desktop

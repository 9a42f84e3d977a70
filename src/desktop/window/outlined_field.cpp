#include "desktop/window/outlined_field.h"

#include <QPainter>

#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kFieldInset = 7;
constexpr double kFieldRadius = 8;

}  // namespace

OutlinedField::OutlinedField() {
  setFrame(false);
  setTextMargins(kFieldInset, kFieldInset, kFieldInset, kFieldInset);
}

void OutlinedField::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double width = hasFocus() ? 2 : 1;
  painter.setPen(QPen(palette().color(hasFocus() ? QPalette::Highlight : kFaintRole), width));
  const double inset = width / 2;
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), kFieldRadius, kFieldRadius);
}

}  // namespace linewatch::desktop

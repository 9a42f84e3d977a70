#include "desktop/setup/progress_line.h"

#include <QPainter>
#include <algorithm>

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kLineHeight = 6;
constexpr int kUsualLineWidth = 200;
constexpr float kTroughAlpha = 0.12F;
/// What is filled while the share is not known.
constexpr double kUnknownShare = 0.08;

}  // namespace

ProgressLine::ProgressLine() { setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed); }

void ProgressLine::setShare(std::optional<double> share) {
  share_ = share;
  update();
}

QSize ProgressLine::sizeHint() const { return {kUsualLineWidth, kLineHeight}; }

void ProgressLine::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QColor trough = palette().color(QPalette::Text);
  trough.setAlphaF(kTroughAlpha);
  painter.setBrush(trough);
  const QRectF whole = rect();
  const double radius = whole.height() / 2;
  painter.drawRoundedRect(whole, radius, radius);
  QRectF filled = whole;
  filled.setWidth(
      std::max(whole.height(), whole.width() * std::clamp(share_.value_or(kUnknownShare), 0.0, 1.0)));
  if (layoutDirection() == Qt::RightToLeft) filled.moveRight(whole.right());
  painter.setBrush(palette().color(QPalette::Link));
  painter.drawRoundedRect(filled, radius, radius);
}

}  // namespace linewatch::desktop

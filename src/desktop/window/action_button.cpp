#include "desktop/window/action_button.h"

#include <QFontMetrics>
#include <QPainter>

#include "desktop/window/enter_key.h"
#include "desktop/window/window_style.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kSidePadding = 16;
constexpr int kTopPadding = 8;
constexpr double kBodyRadius = 8;
constexpr double kButtonTextSize = 13;
constexpr float kPlainAlpha = 0.08F;
constexpr float kPlainHoverAlpha = 0.14F;
constexpr double kDisabledOpacity = 0.45;

}  // namespace

ActionButton::ActionButton(const QString& text, Emphasis emphasis)
    : ActionButton(text, windowFont(kButtonTextSize, QFont::Medium), emphasis) {}

ActionButton::ActionButton(const QString& text, const QFont& font, Emphasis emphasis) : emphasis_(emphasis) {
  setText(text);
  setFont(font);
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
  clickOnEnter(*this);
}

void ActionButton::setEmphasis(Emphasis emphasis) {
  emphasis_ = emphasis;
  update();
}

QSize ActionButton::sizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.horizontalAdvance(text()) + 2 * (kSidePadding + kButtonRing),
          metrics.height() + 2 * (kTopPadding + kButtonRing)};
}

QColor ActionButton::fill() const {
  if (emphasis_ == Emphasis::primary) {
    // The link's colour contrasts with the background, and so with a text in the background's colour.
    const QColor color = palette().color(QPalette::Link);
    if (isDown()) return color.darker(115);
    return underMouse() ? color.lighter(108) : color;
  }
  QColor color = palette().color(QPalette::Text);
  color.setAlphaF(isDown() || underMouse() ? kPlainHoverAlpha : kPlainAlpha);
  return color;
}

void ActionButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!isEnabled()) painter.setOpacity(kDisabledOpacity);
  const QRectF body = QRectF(rect()).adjusted(kButtonRing, kButtonRing, -kButtonRing, -kButtonRing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill());
  painter.drawRoundedRect(body, kBodyRadius, kBodyRadius);
  const bool isPrimary = emphasis_ == Emphasis::primary;
  painter.setPen(palette().color(isPrimary ? QPalette::Base : QPalette::Text));
  painter.drawText(body, static_cast<int>(Qt::AlignCenter), text());
  if (!hasFocus()) return;
  painter.setPen(QPen(palette().color(QPalette::Link), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kBodyRadius + 2, kBodyRadius + 2);
}

}  // namespace linewatch::desktop

#include "desktop/window/link_button.h"

#include <QFontMetrics>
#include <QPainter>

#include "desktop/window/enter_key.h"
#include "desktop/window/focus_ring.h"
#include "desktop/window/widget_role.h"

namespace linewatch::desktop {

namespace {

/// Points beside the text.
constexpr int kRoomForRing = 4;

}  // namespace

LinkButton::LinkButton(const QString& text) {
  setText(text);
  setCursor(Qt::PointingHandCursor);
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setContentsMargins(kRoomForRing, 0, kRoomForRing, 0);
  clickOnEnter(*this);
  setAccessibleRole(*this, QAccessible::Link);
}

/// The arrow means that the link opens another program. In right-to-left interfaces it is mirrored.
QString LinkButton::shownText() const {
  return text() + (layoutDirection() == Qt::RightToLeft ? QStringLiteral(" ↖") : QStringLiteral(" ↗"));
}

QSize LinkButton::sizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.horizontalAdvance(shownText()) + 2 * kRoomForRing + 2, metrics.height() + 4};
}

void LinkButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QFont shown = font();
  shown.setUnderline(underMouse());
  painter.setFont(shown);
  QColor color = palette().color(QPalette::Link);
  if (isDown()) color.setAlphaF(0.6F);
  painter.setPen(color);
  painter.drawText(contentsRect(), static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter), shownText());
  if (hasFocus()) paintFocusRing(painter, QRectF(rect()), palette());
}

}  // namespace linewatch::desktop

#include "desktop/window/link_button.h"

#include <QFontMetrics>
#include <QPainter>

#include "desktop/window/enter_key.h"

namespace linewatch::desktop {

LinkButton::LinkButton(const QString& text) {
  setText(text);
  setCursor(Qt::PointingHandCursor);
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  clickOnEnter(*this);
}

/// The arrow means that the link opens another program. In right-to-left interfaces it is mirrored.
QString LinkButton::shownText() const {
  return text() + (layoutDirection() == Qt::RightToLeft ? QStringLiteral(" ↖") : QStringLiteral(" ↗"));
}

QSize LinkButton::sizeHint() const {
  const QFontMetrics metrics(font());
  return {metrics.horizontalAdvance(shownText()) + 2, metrics.height() + 4};
}

void LinkButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QFont shown = font();
  shown.setUnderline(hasFocus() || underMouse());
  painter.setFont(shown);
  QColor color = palette().color(QPalette::Link);
  if (isDown()) color.setAlphaF(0.6F);
  painter.setPen(color);
  painter.drawText(rect(), static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter), shownText());
}

}  // namespace linewatch::desktop

#include "desktop/window/row_menu_button.h"

#include <QPainter>
#include <QString>

#include "desktop/window/enter_key.h"
#include "desktop/window/focus_ring.h"
#include "desktop/window/widget_role.h"

namespace linewatch::desktop {

RowMenuButton::RowMenuButton(QWidget* parent) : QAbstractButton(parent) {
  setObjectName(QStringLiteral("rowMenu"));
  setFocusPolicy(Qt::TabFocus);
  setAccessibleRole(*this, QAccessible::Button);
  clickOnEnter(*this);
  hide();
}

void RowMenuButton::paintEvent(QPaintEvent*) {
  if (!hasFocus()) return;
  QPainter painter(this);
  paintFocusRing(painter, QRectF(rect()), palette());
}

}  // namespace linewatch::desktop

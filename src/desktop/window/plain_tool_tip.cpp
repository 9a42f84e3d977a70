#include "desktop/window/plain_tool_tip.h"

#include <QString>
#include <QTextDocument>
#include <QWidget>

namespace linewatch::desktop {

void setPlainToolTip(QWidget& widget, const QString& text) {
  // HTML with every character escaped, so that a long text wraps.
  widget.setToolTip(text.isEmpty() ? QString() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal));
  widget.setAccessibleDescription(text);
}

}  // namespace linewatch::desktop

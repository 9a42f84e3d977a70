#pragma once

class QString;
class QWidget;

namespace linewatch::desktop {

/// Sets the widget's tooltip to plain text. Qt alone would take a text that looks like HTML for HTML and read
/// the files that it names: a line called `<img src=/dev/zero>` would never be read to its end. The
/// accessible description becomes the same text, because Qt would otherwise use the HTML of the tooltip.
void setPlainToolTip(QWidget& widget, const QString& text);

}  // namespace linewatch::desktop

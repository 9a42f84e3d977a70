#pragma once

class QString;
class QWidget;

namespace linewatch::desktop {

/// Sets the widget's tool tip to the text as it is, whatever is in it. Qt itself takes a tool tip that looks
/// like HTML for HTML, and reads the files that it names: a line called `<img src=/dev/zero>` would be read
/// without end. The accessible description becomes the same text, since Qt gives a widget without one its
/// tool tip.
void setPlainToolTip(QWidget& widget, const QString& text);

}  // namespace linewatch::desktop

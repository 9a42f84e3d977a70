#pragma once

class QWidget;

namespace linewatch::desktop {

/// Makes a check box, radio button, combo box or list with check boxes draw its marks and its outline with
/// colours that are legible on the card, and grow them with its font. The styles of many desktops draw them
/// too faint.
void setControlStyle(QWidget& control);

}  // namespace linewatch::desktop

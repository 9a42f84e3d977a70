#pragma once

class QAbstractButton;

namespace linewatch::desktop {

/// Makes Enter click the button. On most desktops a button reacts to Space only.
void clickOnEnter(QAbstractButton& button);

}  // namespace linewatch::desktop

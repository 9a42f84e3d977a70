#pragma once

class QAbstractButton;

namespace linewatch::desktop {

/// From now on Enter does what a click on the button does; by itself a button knows no other key than Space
/// on most desktops.
void clickOnEnter(QAbstractButton& button);

}  // namespace linewatch::desktop

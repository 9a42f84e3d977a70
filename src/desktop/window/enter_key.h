#pragma once

class QAbstractButton;

namespace linewatch::desktop {

/// Makes Enter click the button. In most desktop styles only Space does.
void clickOnEnter(QAbstractButton& button);

}  // namespace linewatch::desktop

#pragma once

#include <QObject>
#include <functional>

namespace linewatch::desktop {

/// Calls `changed` when the network becomes metered or ceases to be, and once soon if it is metered now, as
/// long as `owner` lives. Never where no service of the machine knows. Needs a QCoreApplication; main thread.
void watchMetering(QObject& owner, std::function<void(bool isMetered)> changed);

}  // namespace linewatch::desktop

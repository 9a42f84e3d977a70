#pragma once

#include <QObject>
#include <functional>

namespace linewatch::desktop {

/// Calls `changed` each time the network becomes metered or unmetered, and soon after the start if it is
/// metered then. Ends with `owner`. Without a network service on the machine it is never called. Needs a
/// QCoreApplication; main thread.
void watchMetering(QObject& owner, std::function<void(bool isMetered)> changed);

}  // namespace linewatch::desktop

#pragma once

#include <QObject>
#include <functional>

namespace linewatch::desktop {

/// Calls `returned` each time the machine gets an internet connection after it had none. Ends with `owner`.
/// Without announcements of the kernel it is never called. Needs a QCoreApplication; main thread.
void watchNetwork(QObject& owner, std::function<void()> returned);

}  // namespace linewatch::desktop

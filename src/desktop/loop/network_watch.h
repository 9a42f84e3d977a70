#pragma once

#include <QObject>
#include <functional>

namespace linewatch::desktop {

/// Calls `returned` whenever the machine has the internet again after it had not, as long as `owner` lives.
/// Never where the system does not tell. Needs a QCoreApplication; main thread.
void watchNetwork(QObject& owner, std::function<void()> returned);

}  // namespace linewatch::desktop

#pragma once

#include <QObject>
#include <functional>

namespace linewatch::desktop {

/// Calls `returned` whenever the machine has an internet connection again after it had none, as long as
/// `owner` lives. Never called where the kernel does not announce routes. Needs a QCoreApplication; main
/// thread.
void watchNetwork(QObject& owner, std::function<void()> returned);

}  // namespace linewatch::desktop

#pragma once

#include <QObject>
#include <functional>

class QDBusConnection;

namespace linewatch::desktop {

/// Calls `changed` with logind's first answer whether the user's session is locked, and again after each
/// change. Does not wait for the answer. Without logind `changed` is never called. Ends with `owner`.
/// Needs a QCoreApplication; main thread.
void watchLock(const QDBusConnection& bus, QObject& owner, std::function<void(bool isLocked)> changed);

/// The same on the system bus. Connecting takes a moment, so call this when the window is on screen.
void watchLock(QObject& owner, std::function<void(bool isLocked)> changed);

}  // namespace linewatch::desktop

#pragma once

#include <QString>
#include <QVariant>
#include <functional>

class QDBusConnection;
class QDBusMessage;
class QObject;

namespace linewatch::desktop {

/// A call to the bus itself, e.g. "GetNameOwner" of a name.
QDBusMessage busDaemonCall(const QString& method, const QVariantList& arguments = {});

/// Calls without blocking. `done` gets the answer, also if it is an error, unless `owner` is destroyed
/// before.
void callBus(const QDBusConnection& bus, QObject& owner, const QDBusMessage& call,
             std::function<void(const QDBusMessage& answer)> done);

/// The first value of an answer, taken out of its variant; invalid for an error and for an answer without
/// values.
QVariant valueIn(const QDBusMessage& answer);

}  // namespace linewatch::desktop

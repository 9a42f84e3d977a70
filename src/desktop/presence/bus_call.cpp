#include "desktop/presence/bus_call.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QObject>
#include <utility>

namespace linewatch::desktop {

QDBusMessage busDaemonCall(const QString& method, const QVariantList& arguments) {
  QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                                     QStringLiteral("/org/freedesktop/DBus"),
                                                     QStringLiteral("org.freedesktop.DBus"), method);
  call.setArguments(arguments);
  return call;
}

void callBus(const QDBusConnection& bus, QObject& owner, const QDBusMessage& call,
             std::function<void(const QDBusMessage& answer)> done) {
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(call), &owner);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, &owner, [answer, done = std::move(done)] {
    answer->deleteLater();
    done(answer->reply());
  });
}

QVariant valueIn(const QDBusMessage& answer) {
  if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return {};
  const QVariant value = answer.arguments().front();
  return value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
}

}  // namespace linewatch::desktop

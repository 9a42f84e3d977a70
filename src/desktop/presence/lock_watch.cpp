#include "desktop/presence/lock_watch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QTimer>
#include <QVariant>
#include <utility>

#include "desktop/presence/bus_call.h"
#include "shared/environment.h"

namespace linewatch::desktop {

namespace {

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kSession = QStringLiteral("org.freedesktop.login1.Session");
const QString kPropertiesOfObject = QStringLiteral("org.freedesktop.DBus.Properties");

void askForLock(const QDBusConnection& bus, QObject& owner, const QString& session,
                const std::function<void(bool)>& changed) {
  QDBusMessage question =
      QDBusMessage::createMethodCall(kLogind, session, kPropertiesOfObject, QStringLiteral("Get"));
  question << kSession << QStringLiteral("LockedHint");
  callBus(bus, owner, question, [changed](const QDBusMessage& answer) {
    if (const QVariant value = valueIn(answer); value.isValid()) changed(value.toBool());
  });
}

/// The value is not taken from the signal, because any program may send it; it causes a question.
void followSession(const QDBusConnection& bus, QObject& owner, const QString& session,
                   const std::function<void(bool)>& changed) {
  auto* const asking = new QTimer(&owner);
  asking->setSingleShot(true);
  asking->setInterval(0);
  QObject::connect(asking, &QTimer::timeout, &owner,
                   [bus, &owner, session, changed] { askForLock(bus, owner, session, changed); });
  QDBusConnection(bus).connect(QString(), session, kPropertiesOfObject, QStringLiteral("PropertiesChanged"),
                               {kSession}, QString(), asking, SLOT(start()));
  asking->start();
}

/// A program that the user's service manager has started is in no session; for it, "auto" is the session on
/// the display.
QString sessionName() {
  const std::string id = valueOf(processEnvironment, "XDG_SESSION_ID");
  return id.empty() ? QStringLiteral("auto") : QString::fromStdString(id);
}

}  // namespace

void watchLock(const QDBusConnection& bus, QObject& owner, std::function<void(bool)> changed) {
  QDBusMessage question = QDBusMessage::createMethodCall(kLogind, QStringLiteral("/org/freedesktop/login1"),
                                                         QStringLiteral("org.freedesktop.login1.Manager"),
                                                         QStringLiteral("GetSession"));
  question << sessionName();
  callBus(bus, owner, question, [bus, &owner, changed = std::move(changed)](const QDBusMessage& answer) {
    const QVariant session = valueIn(answer);
    if (session.isValid()) followSession(bus, owner, session.value<QDBusObjectPath>().path(), changed);
  });
}

void watchLock(QObject& owner, std::function<void(bool)> changed) {
  const QDBusConnection bus = QDBusConnection::systemBus();
  if (bus.isConnected()) watchLock(bus, owner, std::move(changed));
}

}  // namespace linewatch::desktop

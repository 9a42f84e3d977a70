#include "desktop/presence/lock_watch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QTimer>
#include <utility>

#include "shared/environment.h"

namespace linewatch::desktop {

namespace {

const QString kLogind = QStringLiteral("org.freedesktop.login1");
const QString kSession = QStringLiteral("org.freedesktop.login1.Session");
const QString kPropertiesOfObject = QStringLiteral("org.freedesktop.DBus.Properties");

/// Calls `done` with the answer, unless it is an error.
template <class Answer, class Done>
void callLogind(const QDBusConnection& bus, QObject& owner, const QDBusMessage& call, Done done) {
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(call), &owner);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, &owner, [answer, done = std::move(done)] {
    answer->deleteLater();
    const QDBusPendingReply<Answer> reply = *answer;
    if (!reply.isError()) done(reply.value());
  });
}

void askForLock(const QDBusConnection& bus, QObject& owner, const QString& session,
                const std::function<void(bool)>& changed) {
  QDBusMessage question =
      QDBusMessage::createMethodCall(kLogind, session, kPropertiesOfObject, QStringLiteral("Get"));
  question << kSession << QStringLiteral("LockedHint");
  callLogind<QDBusVariant>(bus, owner, question,
                           [changed](const QDBusVariant& value) { changed(value.variant().toBool()); });
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
  callLogind<QDBusObjectPath>(bus, owner, question,
                              [bus, &owner, changed = std::move(changed)](const QDBusObjectPath& session) {
                                followSession(bus, owner, session.path(), changed);
                              });
}

void watchLock(QObject& owner, std::function<void(bool)> changed) {
  const QDBusConnection bus = QDBusConnection::systemBus();
  if (bus.isConnected()) watchLock(bus, owner, std::move(changed));
}

}  // namespace linewatch::desktop

#include "desktop/window/portal_setting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QTimer>
#include <utility>

namespace linewatch::desktop {

namespace {

const QString kPortal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kSettings = QStringLiteral("org.freedesktop.portal.Settings");

/// Asks for the value, without blocking.
void askForSetting(const QDBusConnection& bus, QObject& owner, const PortalSetting& setting,
                   const std::function<void(const QVariant&)>& changed) {
  // Every portal has this method; only newer ones have "ReadOne".
  QDBusMessage question =
      QDBusMessage::createMethodCall(kPortal, kPortalPath, kSettings, QStringLiteral("Read"));
  question << setting.group << setting.key;
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(question), &owner);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, &owner, [answer, changed] {
    answer->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (reply.isError()) return;
    QVariant value = reply.value().variant();
    // "Read" wraps the value twice.
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    changed(value);
  });
}

}  // namespace

void followPortalSetting(const QDBusConnection& bus, QObject& owner, const PortalSetting& setting,
                         std::function<void(const QVariant&)> changed) {
  // The value is not taken from the signal; every change is followed by a question.
  auto* const asking = new QTimer(&owner);
  asking->setSingleShot(true);
  asking->setInterval(0);
  QObject::connect(asking, &QTimer::timeout, &owner, [bus, &owner, setting, changed = std::move(changed)] {
    askForSetting(bus, owner, setting, changed);
  });
  // Accepts the signal from every sender, because looking up the portal's name would block.
  QDBusConnection(bus).connect(QString(), kPortalPath, kSettings, QStringLiteral("SettingChanged"),
                               {setting.group, setting.key}, QString(), asking, SLOT(start()));
  asking->start();
}

/// Without the check Qt would try to start a bus, which blocks.
std::optional<QDBusConnection> sessionBus() {
  const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
  const bool hasSocket =
      !folder.isEmpty() && QFile::exists(QString::fromLocal8Bit(folder) + QStringLiteral("/bus"));
  if (!hasSocket && !qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) return std::nullopt;
  return QDBusConnection::sessionBus();
}

}  // namespace linewatch::desktop

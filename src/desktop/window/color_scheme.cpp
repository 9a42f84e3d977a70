#include "desktop/window/color_scheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QTimer>
#include <memory>
#include <utility>

#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

const QString kPortal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString kAppearance = QStringLiteral("org.freedesktop.appearance");
const QString kColorScheme = QStringLiteral("color-scheme");

/// Asks for the scheme, without blocking.
void askForColorScheme(const QDBusConnection& bus, QObject& owner,
                       const std::function<void(ColorScheme)>& changed) {
  // Every portal has this method; only newer ones have "ReadOne".
  QDBusMessage question =
      QDBusMessage::createMethodCall(kPortal, kPortalPath, kSettings, QStringLiteral("Read"));
  question << kAppearance << kColorScheme;
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(question), &owner);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, &owner, [answer, changed] {
    answer->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (reply.isError()) return;
    QVariant value = reply.value().variant();
    // "Read" wraps the value twice.
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    const uint number = value.toUInt();
    changed(number == 1 ? ColorScheme::dark : number == 2 ? ColorScheme::light : ColorScheme::any);
  });
}

/// Without this check Qt would try to start a bus, which blocks.
bool hasSessionBus() {
  if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) return true;
  const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
  return !folder.isEmpty() && QFile::exists(QString::fromLocal8Bit(folder) + QStringLiteral("/bus"));
}

}  // namespace

void followColorScheme(const QDBusConnection& bus, QObject& owner, std::function<void(ColorScheme)> changed) {
  // The value is not taken from the signal; every change is followed by a question.
  auto* const asking = new QTimer(&owner);
  asking->setSingleShot(true);
  asking->setInterval(0);
  QObject::connect(asking, &QTimer::timeout, &owner,
                   [bus, &owner, changed = std::move(changed)] { askForColorScheme(bus, owner, changed); });
  // Accepts the signal from every sender, because looking up the portal's name would block.
  QDBusConnection(bus).connect(QString(), kPortalPath, kSettings, QStringLiteral("SettingChanged"),
                               {kAppearance, kColorScheme}, QString(), asking, SLOT(start()));
  asking->start();
}

void followDesktopColorScheme(QObject& owner, std::function<void(ColorScheme)> changed) {
  if (hasSessionBus()) followColorScheme(QDBusConnection::sessionBus(), owner, std::move(changed));
}

void applyColorScheme(ColorScheme scheme) {
  const auto isAsAsked = [scheme] {
    const ui::Appearance now = appearanceOf(QApplication::palette());
    return scheme == (now == ui::Appearance::dark ? ColorScheme::dark : ColorScheme::light);
  };
  if (isAsAsked()) return;
  // Restores the desktop's own palette.
  QApplication::setPalette(QPalette());
  if (scheme == ColorScheme::any || isAsAsked()) return;
  QApplication::setPalette(
      windowPalette(scheme == ColorScheme::dark ? ui::Appearance::dark : ui::Appearance::light));
}

}  // namespace linewatch::desktop

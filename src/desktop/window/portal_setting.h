#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

class QDBusConnection;
class QVariant;

namespace linewatch::desktop {

/// A setting of the desktop, as its portal names it.
struct PortalSetting {
  QString group;
  QString key;
};

/// Calls `changed` with the setting's value now and after each change. Ends with `owner`. Does not block. It
/// is never called without a settings service on the bus, or if the service does not know the setting. Needs
/// a QCoreApplication; main thread.
void followPortalSetting(const QDBusConnection& bus, QObject& owner, const PortalSetting& setting,
                         std::function<void(const QVariant&)> changed);

/// The bus of the user's session; absent if none runs.
std::optional<QDBusConnection> sessionBus();

}  // namespace linewatch::desktop

#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

class QDBusConnection;

namespace linewatch::desktop {

/// The colour scheme that the user has chosen for all windows in the desktop's settings.
enum class ColorScheme : std::uint8_t { any, dark, light };

/// Calls `changed` with the desktop's setting now and after each change, as long as `owner` lives. Does not
/// block. Never calls it if no settings service is on the bus. Needs a QCoreApplication; main thread.
void followColorScheme(const QDBusConnection& bus, QObject& owner, std::function<void(ColorScheme)> changed);

/// Keeps the application's colours as the desktop's settings ask, where Qt does not do so itself, as long as
/// `owner` lives. Needs a QApplication; main thread.
void followDesktopColorScheme(QObject& owner);

/// Replaces the application's palette if it does not match the scheme, and restores the desktop's palette
/// when it is no longer needed. Main thread.
void applyColorScheme(ColorScheme scheme);

}  // namespace linewatch::desktop

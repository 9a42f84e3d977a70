#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

class QDBusConnection;

namespace linewatch::desktop {

/// What the user asks of all windows, as the desktop's settings have it.
enum class ColorScheme : std::uint8_t { any, dark, light };

/// Calls `changed` once the desktop's settings have been asked, and after each change of them, as long as
/// `owner` lives; nobody waits for an answer. Never where nobody on the bus knows the settings. Needs a
/// QCoreApplication; main thread.
void followColorScheme(const QDBusConnection& bus, QObject& owner, std::function<void(ColorScheme)> changed);

/// Gives the application's windows the colours that the user's desktop asks for as long as `owner` lives,
/// where Qt does not know of them. Needs a QApplication; main thread.
void followDesktopColorScheme(QObject& owner);

/// Puts a palette of its own in place of the application's where this one is not as the scheme asks for, and
/// takes it away when it is no longer needed. Main thread.
void applyColorScheme(ColorScheme scheme);

}  // namespace linewatch::desktop

#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

class QDBusConnection;

namespace linewatch::desktop {

/// The colour scheme in the desktop's settings.
enum class ColorScheme : std::uint8_t { any, dark, light };

/// Calls `changed` with the desktop's setting now and after each change. Ends with `owner`. Does not block.
/// Without a settings service on the bus it is never called. Needs a QCoreApplication; main thread.
void followColorScheme(const QDBusConnection& bus, QObject& owner, std::function<void(ColorScheme)> changed);

/// The same for the desktop of this session, if it has a bus.
void followDesktopColorScheme(QObject& owner, std::function<void(ColorScheme)> changed);

/// Applies the desktop's setting of a higher contrast in the same way.
void followDesktopContrast(QObject& owner);

/// Calls `changed` with the desktop's setting of reduced motion, now and after each change. Ends with
/// `owner`.
void followDesktopMotion(QObject& owner, std::function<void(bool isReduced)> changed);

/// Sets a palette of this scheme if the application's palette does not match it, and the desktop's own
/// palette if that matches. Main thread.
void applyColorScheme(ColorScheme scheme);
/// The same for a higher contrast, in the last applied scheme.
void applyHighContrast(bool isHigh);

}  // namespace linewatch::desktop

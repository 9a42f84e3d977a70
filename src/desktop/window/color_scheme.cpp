#include "desktop/window/color_scheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QVariant>
#include <utility>

#include "desktop/window/portal_setting.h"
#include "desktop/window/window_colors.h"

namespace linewatch::desktop {

namespace {

const QString kAppearance = QStringLiteral("org.freedesktop.appearance");

/// What the palette of the application has to look like.
struct WantedColors {
  ColorScheme scheme = ColorScheme::any;
  bool isHighContrast = false;
};
// Like the palette itself, there is one for the application.
WantedColors wantedColors;

void applyWantedColors() {
  const ui::Appearance now = appearanceOf(QApplication::palette());
  const bool isAsAsked = wantedColors.scheme == (ui::isDark(now) ? ColorScheme::dark : ColorScheme::light) &&
                         wantedColors.isHighContrast == ui::isHighContrast(now);
  if (isAsAsked) return;
  // Restores the desktop's own palette.
  QApplication::setPalette(QPalette());
  const ui::Appearance own = appearanceOf(QApplication::palette());
  const bool isDark =
      wantedColors.scheme == ColorScheme::any ? ui::isDark(own) : wantedColors.scheme == ColorScheme::dark;
  const bool serves = isDark == ui::isDark(own) && (!wantedColors.isHighContrast || ui::isHighContrast(own));
  if (!serves)
    QApplication::setPalette(windowPalette(ui::appearanceFor(isDark, wantedColors.isHighContrast)));
}

}  // namespace

void followColorScheme(const QDBusConnection& bus, QObject& owner, std::function<void(ColorScheme)> changed) {
  followPortalSetting(
      bus, owner, {kAppearance, QStringLiteral("color-scheme")},
      [changed = std::move(changed)](const QVariant& value) {
        const uint number = value.toUInt();
        changed(number == 1 ? ColorScheme::dark : number == 2 ? ColorScheme::light : ColorScheme::any);
      });
}

void followDesktopColorScheme(QObject& owner, std::function<void(ColorScheme)> changed) {
  if (const auto bus = sessionBus()) followColorScheme(*bus, owner, std::move(changed));
}

void followDesktopContrast(QObject& owner) {
  const auto bus = sessionBus();
  if (!bus) return;
  followPortalSetting(*bus, owner, {kAppearance, QStringLiteral("contrast")},
                      [](const QVariant& value) { applyHighContrast(value.toUInt() == 1); });
}

void followDesktopMotion(QObject& owner, std::function<void(bool isReduced)> changed) {
  const auto bus = sessionBus();
  if (!bus) return;
  followPortalSetting(*bus, owner, {kAppearance, QStringLiteral("reduced-motion")},
                      [changed](const QVariant& value) { changed(value.toUInt() == 1); });
  // Older desktops have only this setting.
  followPortalSetting(*bus, owner,
                      {QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations")},
                      [changed = std::move(changed)](const QVariant& value) { changed(!value.toBool()); });
}

void applyColorScheme(ColorScheme scheme) {
  wantedColors.scheme = scheme;
  applyWantedColors();
}

void applyHighContrast(bool isHigh) {
  wantedColors.isHighContrast = isHigh;
  applyWantedColors();
}

}  // namespace linewatch::desktop

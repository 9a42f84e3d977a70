#pragma once

#include <QObject>
#include <memory>
#include <string>

#include "app/screen/panel.h"
#include "app/screen/panel_presence.h"
#include "desktop/desktop_platform.h"
#include "desktop/presence/rider_notices.h"
#include "desktop/presence/tray_icon.h"
#include "desktop/presence/tray_watch.h"
#include "feeds/background_queue.h"
#include "localization/user_locale.h"
#include "notices/notice.h"
#include "settings/settings.h"

namespace linewatch::app {

/// The panel's icon in the desktop's tray, and the notifications. With the icon a closed panel can go on in
/// the tray. Without a session bus there is neither. Main thread; panel, platform and presence must
/// outlive it.
class PanelTray final : public QObject {
 public:
  PanelTray(Panel& panel, desktop::DesktopPlatform& platform, PanelPresence& presence,
            const UserLocale& locale);
  ~PanelTray() override;

 protected:
  /// Sees the events of the panel's window.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  desktop::TrayIcon::Actions trayActions();
  std::unique_ptr<desktop::RiderNotices> makeNotices();
  void applySettings();
  void showIcon();
  void statusDidChange(const TransitStatus& status);
  void panelVisibilityDidChange();
  void togglePanel();
  void muteAll(Seconds time);
  void open(const notices::Notice& notice, const std::string& activationToken);

  /// Whether the panel goes on in the tray instead of closing.
  bool takeOverClose();
  void askAboutClosing();
  void chooseClosing(TrayChoice choice);

  Panel& panel_;
  desktop::DesktopPlatform& platform_;
  PanelPresence& presence_;
  UserLocale locale_;
  desktop::SharedWindowTexts texts_;
  Settings settings_;
  BackgroundQueue queue_;
  /// Null without a session bus or saved state.
  std::unique_ptr<desktop::RiderNotices> notices_;
  /// Null without a session bus.
  std::unique_ptr<desktop::TrayWatch> trayWatch_;
  /// Null without a tray, or when the user wants no icon.
  std::unique_ptr<desktop::TrayIcon> icon_;
  bool isAsking_ = false;
  /// Whether the user has closed the window and did not want the panel to stay in the tray.
  bool isClosed_ = false;
  std::shared_ptr<void> trayPatience_;
  std::shared_ptr<void> listening_;
};

}  // namespace linewatch::app

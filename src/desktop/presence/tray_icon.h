#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "desktop/window/window_texts.h"
#include "localization/icu_localization.h"
#include "shared/date.h"
#include "status/transit_status.h"

class QAction;
class QMenu;
class QSystemTrayIcon;

namespace linewatch::desktop {

/// The icon in the desktop's tray: whether the lines run normally, in shape, colour and a tooltip, with a
/// menu. A click shows or hides the panel. To be made when there is a tray (see TrayWatch). Needs a
/// QApplication and a session bus; main thread.
class TrayIcon {
 public:
  struct Actions {
    /// Shows the panel, or hides it if it is shown.
    std::function<void()> togglePanel;
    std::function<void()> refresh;
    /// Silences all notifications for that time. An empty function: the menu does not offer that.
    std::function<void(Seconds)> mute;
    std::function<void()> showSettings;
    std::function<void()> quit;
  };

  TrayIcon(SharedWindowTexts texts, const UserLocale& locale, Actions actions);
  ~TrayIcon();
  TrayIcon(const TrayIcon&) = delete;
  TrayIcon& operator=(const TrayIcon&) = delete;

  /// Whether there is a tray that shows the icon.
  bool isShown() const;
  /// Shows the status, as of `now`.
  void setStatus(const TransitStatus& status, Date now);
  /// To be called when the panel is shown or hidden.
  void setPanelShown(bool isShown);

 private:
  void makeMenu();
  void showState(TransitStatus::State state);

  SharedWindowTexts texts_;
  std::unique_ptr<IcuLocalization> statusTexts_;
  Actions actions_;
  /// Before the icon, which uses it.
  std::unique_ptr<QMenu> menu_;
  QAction* panelAction_ = nullptr;
  std::unique_ptr<QSystemTrayIcon> icon_;
  /// The state that the icon shows; absent at first.
  std::optional<TransitStatus::State> shownState_;
};

}  // namespace linewatch::desktop

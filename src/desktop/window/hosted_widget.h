#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/window/panel_host.h"
#include "desktop/window/panel_updates.h"
#include "shared/date.h"
#include "shared/error.h"

namespace linewatch {
class HostObserver;
class RVResult;
class RVTransitIncidentsViewController;
}  // namespace linewatch

namespace linewatch::desktop {

/// The transit widget in the panel. HostedWidget tells the widget when it appears and disappears, its display
/// mode and its largest size. It also schedules the widget's updates, and saves the widget's list as soon as
/// the list is on screen. Needs an installed platform. Main thread.
class HostedWidget final : public QObject {
 public:
  /// Handlers of the panel, all optional. Each is called after the state has changed.
  struct Handlers {
    /// The rows, or their number, have changed.
    std::function<void()> contentDidChange = [] {};
    /// The display mode has changed, or whether the widget has more to show.
    std::function<void()> modeDidChange = [] {};
    /// A fetch has begun or ended.
    std::function<void()> fetchDidChange = [] {};
  };

  /// `wantsExpanded`: the user's choice. When absent, the widget has the mode in which it was saved. No
  /// handler is called before `start`. `observer` may be null.
  HostedWidget(const PanelHost::Limits& limits, PanelHost::OpenURL openURL, std::optional<bool> wantsExpanded,
               PanelUpdates::Settings updates = {}, std::shared_ptr<HostObserver> observer = nullptr);
  ~HostedWidget() override;

  void start(Handlers handlers);
  /// Whether the widget is visible. A hidden widget does not fetch.
  void setShown(bool isShown, const PanelHost::Limits& limits);
  bool isShown() const { return isShown_; }

  const PanelHost::Limits& limits() const { return host_->limits(); }
  void setLimits(const PanelHost::Limits& limits) { host_->setLimits(limits); }
  /// To be called after the window's width has changed. `height`: the height of the rows, in points.
  void widthDidChange(const PanelHost::Limits& limits, double height);
  /// The height of all rows, in points: at least one row, at most `room`.
  double preferredHeight(double room) const;
  /// To be called after the platform's text size has changed, with the widget's new limits.
  void textSizeDidChange(const PanelHost::Limits& limits);

  /// Expands or collapses the widget for the user. If it has no more to show, it expands when it has.
  void setExpanded(bool expanded);
  bool isExpanded() const;
  bool offersMore() const;

  PanelUpdates& updates() { return updates_; }
  bool isFetching() const;
  /// The error of the last fetch; absent after a success.
  std::optional<Error> fetchError() const;
  /// Whether the list is the saved one, or none, because no fetch has ended yet.
  bool showsSavedList() const;
  /// When the saved list was last known to be up to date; absent when unknown.
  std::optional<Date> savedListDate() const { return savedListDate_; }

  RVTransitIncidentsViewController& controller() { return *controller_; }

 private:
  void contentDidChange();
  void requestDidChange();
  void availabilityDidChange();
  void applyMode();
  void logFailureOnce(const std::optional<Error>& error);
  void saveState();
  bool isSavedListDateOld() const;
  void updateSavedListDate();
  Date dateOfOldestAlerts() const;

  void askForUpdate();

  /// Null when nobody observes.
  std::shared_ptr<HostObserver> observer_;
  std::shared_ptr<PanelHost> host_;
  std::shared_ptr<RVTransitIncidentsViewController> controller_;
  std::function<std::vector<FeedState>()> feedStates_;
  PanelUpdates updates_;
  Handlers handlers_;
  bool isShown_ = false;
  /// The user's choice. It stays while the widget has no more to show.
  bool wantsExpanded_ = false;
  bool isModePending_ = false;
  /// The result and the mode that were saved last.
  std::shared_ptr<const RVResult> savedResult_;
  bool savedExpanded_ = false;
  std::optional<Date> savedListDate_;
  /// When the list on screen was last known to be up to date; absent for an error.
  std::optional<Date> listDate_;
  /// The sentence that was logged last; empty after a success.
  std::string loggedFailure_;
};

}  // namespace linewatch::desktop

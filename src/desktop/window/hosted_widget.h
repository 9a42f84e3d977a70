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

/// The transit widget inside the panel. It tells the widget when it appears and disappears, which display
/// mode it has and how large it may be; asks for updates; and saves the widget's list as soon as it is on
/// screen. Needs an installed platform. Main thread.
class HostedWidget final : public QObject {
 public:
  /// What the panel is told. Each is called after the state has changed.
  struct Handlers {
    /// The widget has other rows, or another number of them.
    std::function<void()> contentDidChange;
    /// The display mode, or whether there is more to show, has changed.
    std::function<void()> modeDidChange;
    /// A fetch has begun or ended.
    std::function<void()> fetchDidChange;
  };

  /// `wantsExpanded`: the user's choice; absent before the first one: as the widget was when it was saved. No
  /// handler is called before `start`. `observer` may be null.
  HostedWidget(const PanelHost::Limits& limits, PanelHost::OpenURL openURL, std::optional<bool> wantsExpanded,
               PanelUpdates::Settings updates = {}, std::shared_ptr<HostObserver> observer = nullptr);
  ~HostedWidget() override;

  void start(Handlers handlers);
  /// Whether the user can see the widget. Only then does it fetch by itself.
  void setShown(bool isShown, const PanelHost::Limits& limits);
  bool isShown() const { return isShown_; }

  const PanelHost::Limits& limits() const { return host_->limits(); }
  void setLimits(const PanelHost::Limits& limits) { host_->setLimits(limits); }
  /// The window's width has changed; `height` is the present height of the rows, in points.
  void widthDidChange(const PanelHost::Limits& limits, double height);
  /// The height of all rows, at least that of one row and at most `room`, in points.
  double preferredHeight(double room) const;
  /// To be called after the platform's text size has changed.
  void textSizeDidChange();

  /// Expands or collapses the widget, as the user asks: at once, or as soon as there is more to show.
  void setExpanded(bool expanded);
  bool isExpanded() const;
  bool offersMore() const;

  PanelUpdates& updates() { return updates_; }
  bool isFetching() const;
  /// Why the last fetch failed; absent when it did not.
  std::optional<Error> fetchError() const;
  /// Whether no fetch has ended yet, so that the list is the saved one, if there is any.
  bool showsSavedList() const;
  /// When the saved list was last known to be current; absent when that is not known.
  std::optional<Date> savedListDate() const { return savedListDate_; }

  RVTransitIncidentsViewController& controller() { return *controller_; }

 private:
  void contentDidChange();
  void requestDidChange();
  void availabilityDidChange();
  void applyMode();
  void logFailureOnce(const std::optional<Error>& error);
  void saveState();
  bool isListDateOld() const;
  void noteListDate();
  Date newsDate() const;

  void askForUpdate();

  /// Null when nobody observes.
  std::shared_ptr<HostObserver> observer_;
  std::shared_ptr<PanelHost> host_;
  std::shared_ptr<RVTransitIncidentsViewController> controller_;
  std::function<std::vector<FeedState>()> feedStates_;
  PanelUpdates updates_;
  Handlers handlers_;
  bool isShown_ = false;
  /// The user's choice, even while the widget has nothing more to show.
  bool wantsExpanded_ = false;
  bool isModePending_ = false;
  /// What was saved last.
  std::shared_ptr<const RVResult> savedResult_;
  bool savedExpanded_ = false;
  std::optional<Date> savedListDate_;
  /// When the list on screen was last known to be current; absent for an error.
  std::optional<Date> listDate_;
  /// The failure that was logged last; empty after a success.
  std::string loggedFailure_;
};

}  // namespace linewatch::desktop

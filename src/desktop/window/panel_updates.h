#pragma once

#include <functional>
#include <memory>

#include "shared/date.h"

namespace linewatch {
class Timer;
}

namespace linewatch::desktop {

/// Decides when to ask the widget for updates that it does not start by itself: after a failure, with growing
/// intervals; when the connection is back; and after a fetch during which the favourites changed. Asks for
/// nothing while the widget is hidden. Needs an installed platform. Main thread.
class PanelUpdates {
 public:
  /// `ask` makes the widget start a fetch; it is not called while a fetch runs.
  explicit PanelUpdates(std::function<void()> ask) : ask_(std::move(ask)) {}
  ~PanelUpdates() { cancelRetry(); }
  PanelUpdates(const PanelUpdates&) = delete;
  PanelUpdates& operator=(const PanelUpdates&) = delete;

  /// To be called for every fetch, whoever started it. `fetchDidEnd` is called when the next fetch can be
  /// started.
  void fetchDidBegin();
  void fetchDidEnd(bool failed);
  /// A widget that appears starts a fetch by itself.
  void setInSight(bool isInSight);

  void userDidAsk();
  void favoritesDidChange();
  void connectionDidReturn();

 private:
  void scheduleRetry(Seconds interval);
  void cancelRetry();

  std::function<void()> ask_;
  bool isInSight_ = false;
  bool isFetching_ = false;
  /// Both happened after the running fetch began, which may not have noticed them.
  bool favoritesHaveChanged_ = false;
  bool connectionHasReturned_ = false;
  int failures_ = 0;
  /// Null when no retry is scheduled.
  std::shared_ptr<Timer> retry_;
};

}  // namespace linewatch::desktop

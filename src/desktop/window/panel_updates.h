#pragma once

#include <functional>
#include <memory>

#include "shared/date.h"

namespace linewatch {
class Timer;
}

namespace linewatch::desktop {

/// Knows when the widget is to be asked for news that it does not ask for by itself: after a failure again
/// and again, later each time; when the connection is back; and once more when something has changed that the
/// running fetch may not have seen. Out of sight nothing is asked for. Needs an installed platform. Main
/// thread.
class PanelUpdates {
 public:
  /// `ask` has the widget start a fetch; it is not called while one runs.
  explicit PanelUpdates(std::function<void()> ask) : ask_(std::move(ask)) {}
  ~PanelUpdates() { cancelRetry(); }
  PanelUpdates(const PanelUpdates&) = delete;
  PanelUpdates& operator=(const PanelUpdates&) = delete;

  /// To be told whoever has started the fetch, and told of its end once another can be started.
  void fetchDidBegin();
  void fetchDidEnd(bool failed);
  /// What appears asks for news by itself.
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
  /// Since the running fetch began; it may have been too early for both.
  bool favoritesHaveChanged_ = false;
  bool connectionHasReturned_ = false;
  int failures_ = 0;
  /// Null when none is due.
  std::shared_ptr<Timer> retry_;
};

}  // namespace linewatch::desktop

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/loop/clock_watch.h"
#include "feeds/feed_state.h"
#include "shared/date.h"

namespace linewatch {
class MainLoop;
class RandomSource;
class Timer;
}  // namespace linewatch

namespace linewatch::desktop {

/// The default time between two updates of a visible panel.
inline constexpr Seconds kUsualRefresh{120};

/// Schedules the widget's updates, in addition to those that the widget starts by itself:
///
/// - every `refresh` seconds plus a random part of at most a tenth, so that panels that start together do
///   not fetch together; every 10 minutes on a metered network;
/// - up to 6 seconds before the next retry of a failed feed, but not before the server's Retry-After, and
///   when the grace of its kept alerts ends; if every feed has failed, only then;
/// - once after the machine resumes from sleep, after its clock is set, after the network returns, and after
///   the favourites change.
///
/// While the widget is hidden nothing is scheduled. Main thread.
class PanelUpdates {
 public:
  struct Settings {
    Seconds refresh = kUsualRefresh;
    /// Gives the states of the feeds after the last fetch. Without this function no feed ever fails.
    std::function<std::vector<FeedState>()> feedStates = {};
    std::function<ClockReading()> readClocks = desktop::readClocks;
  };

  /// `ask` makes the widget start a fetch. It is never called while a fetch runs. The main loop and the
  /// source must outlive this.
  PanelUpdates(MainLoop& mainLoop, RandomSource& randomSource, std::function<void()> ask, Settings settings);
  ~PanelUpdates() { cancelTimer(); }
  PanelUpdates(const PanelUpdates&) = delete;
  PanelUpdates& operator=(const PanelUpdates&) = delete;

  /// To be called for every fetch, also for those that the widget starts by itself. When `fetchDidEnd` is
  /// called, the next fetch can be started.
  void fetchDidBegin();
  void fetchDidEnd(bool failed);
  /// Whether the widget is visible. A widget that appears starts a fetch by itself.
  void setVisible(bool isVisible);

  void userDidAsk();
  void favoritesDidChange();
  void connectionDidReturn();
  void setMetered(bool isMetered);
  /// Changes the time between two updates, from now on.
  void setRefresh(Seconds refresh);
  /// To be called when the machine may have slept, or when its clock may have been set. Asks for an update if
  /// one of them has happened since the last fetch began.
  void checkClock();

 private:
  std::vector<FeedState> feedStates() const;
  void scheduleNext();
  void scheduleIn(Seconds interval);
  void cancelTimer();
  /// A random number from 0 to 1, without 1.
  double randomPart() const;
  Seconds refreshPause() const;
  Seconds retryPause(const FeedState& state, Seconds pause) const;
  std::optional<Seconds> pauseForFeeds(const std::vector<FeedState>& states) const;

  Date now() const;

  MainLoop& mainLoop_;
  RandomSource& randomSource_;
  std::function<void()> ask_;
  Settings settings_;
  bool isVisible_ = false;
  bool isFetching_ = false;
  bool isMetered_ = false;
  /// Events during the running fetch. The fetch may have started too early to notice them, so they are
  /// handled when it ends.
  bool mustAskAgain_ = false;
  bool connectionHasReturned_ = false;
  /// Whether the last fetch or one of its feeds failed, and when the fetch ended; absent before the first
  /// one.
  bool hasFailed_ = false;
  std::optional<Date> endOfFetch_;
  /// The clocks when the last fetch began.
  ClockReading clocksAtStart_;
  /// Null when no update is scheduled.
  std::shared_ptr<Timer> timer_;
};

}  // namespace linewatch::desktop

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/loop/clock_watch.h"
#include "feeds/feed_state.h"
#include "shared/date.h"

namespace linewatch {
class Timer;
}

namespace linewatch::desktop {

/// How often a panel on screen asks for an update, unless the user says otherwise.
inline constexpr Seconds kUsualRefresh{120};

/// Decides when to ask the widget for updates that it does not start by itself:
///
/// - on screen, every `refresh` seconds and up to a tenth of that more, at random, so that panels that were
///   started together do not ask together; on a metered network every 10 minutes;
/// - when a failed feed is to be tried again, and when the grace of its kept alerts ends. While every feed
///   fails nothing else is asked for;
/// - once, when the machine wakes up, its clock is set, the network returns, or the favourites change.
///
/// Asks for nothing while the widget is hidden. Needs an installed platform. Main thread.
class PanelUpdates {
 public:
  struct Settings {
    Seconds refresh = kUsualRefresh;
    /// The states of the shown feeds after the last fetch. An empty function: no feed ever fails.
    std::function<std::vector<FeedState>()> feedStates = {};
    std::function<ClockReading()> readClocks = desktop::readClocks;
  };

  /// `ask` makes the widget start a fetch; it is not called while a fetch runs.
  PanelUpdates(std::function<void()> ask, Settings settings);
  ~PanelUpdates() { cancelTimer(); }
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
  void setMetered(bool isMetered);
  /// To be called when the machine may have slept or its clock may have been set. Asks if one of them
  /// happened after the last fetch began.
  void checkClock();

 private:
  std::vector<FeedState> feedStates() const;
  void scheduleNext();
  void scheduleIn(Seconds interval);
  void cancelTimer();
  /// A random part of 1.
  static double randomPart();
  Seconds ordinaryPause() const;
  std::optional<Seconds> pauseForFeeds(const std::vector<FeedState>& states) const;

  std::function<void()> ask_;
  Settings settings_;
  bool isInSight_ = false;
  bool isFetching_ = false;
  bool isMetered_ = false;
  /// These happened after the running fetch began, which may not have noticed them.
  bool mustAskAgain_ = false;
  bool connectionHasReturned_ = false;
  /// The outcome of the last fetch, and when it ended; absent before the first one.
  bool hasFailed_ = false;
  std::optional<Date> ended_;
  /// When the last fetch began.
  ClockReading begun_;
  /// Null when no update is scheduled.
  std::shared_ptr<Timer> timer_;
};

}  // namespace linewatch::desktop

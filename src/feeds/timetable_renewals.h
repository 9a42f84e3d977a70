#pragma once

#include <functional>
#include <map>
#include <string>

#include "feeds/background_queue.h"
#include "shared/date.h"
#include "shared/mutex.h"

namespace linewatch {

/// Renews timetables on a thread of its own, one after another, so that nobody waits for a big one. Any
/// thread. A timetable is named by a key, e.g. its feed and its place in the feed.
class TimetableRenewals {
 public:
  struct Result {
    /// Whether there is a newer timetable.
    bool isNew = false;
    /// When the next renewal is due.
    Date due{};
  };
  using Renewal = std::function<Result()>;

  /// Notes when a timetable is due. Until then `beginIfDue` does nothing, nor for one that was never noted.
  void setDue(const std::string& key, Date due) LINEWATCH_EXCLUDES(mutex_);
  /// Begins the renewal if it is due and not running.
  void beginIfDue(const std::string& key, Date now, Renewal renew) LINEWATCH_EXCLUDES(mutex_);
  bool isRunning(const std::string& key) const LINEWATCH_EXCLUDES(mutex_);
  /// Whether a renewal has brought a newer timetable since the last call.
  bool takeNews(const std::string& key) LINEWATCH_EXCLUDES(mutex_);
  /// Waits for the renewals that have begun. Later ones do not begin.
  void finish() { queue_.finish(); }

 private:
  struct State {
    Date due{};
    bool isRunning = false;
    bool hasNews = false;
  };

  void end(const std::string& key, const Result& result) LINEWATCH_EXCLUDES(mutex_);

  mutable Mutex mutex_;
  std::map<std::string, State> states_ LINEWATCH_GUARDED_BY(mutex_);
  BackgroundQueue queue_;
};

}  // namespace linewatch

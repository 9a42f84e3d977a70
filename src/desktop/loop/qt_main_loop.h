#pragma once

#include <QObject>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/main_loop.h"
#include "shared/mutex.h"

class QSocketNotifier;

namespace linewatch::desktop {

/// The main loop, implemented with Qt's event loop, which must run on the thread that made this object, under
/// a QCoreApplication.
///
/// All timers share one kernel timer. Its clock also runs during sleep, so timers that came due during sleep
/// fire at the resume. An idle loop never wakes up. A timer never fires early. If its tolerance allows, it
/// fires at a whole second of the clock, together with other timers.
class QtMainLoop final : public MainLoop {
 public:
  /// Whether a clock with a given start time runs.
  enum class Clock { running, frozen };

  /// With `startsAt` the clock starts at that time instead of the machine's.
  explicit QtMainLoop(std::optional<Date> startsAt = std::nullopt, Clock clock = Clock::running);
  ~QtMainLoop() override;

  Date now() const override;
  bool isMainThread() const override;
  void dispatchAsync(std::function<void()> action) override LINEWATCH_EXCLUDES(mutex_);
  /// A negative interval or NaN counts as zero. Repeats of less than a millisecond count as one millisecond.
  std::shared_ptr<Timer> scheduleTimer(Seconds interval, bool repeats, std::function<void()> action) override;

  /// Lets time pass at once, as if the machine had slept: timers that come due fire in the loop's next turn.
  /// A clock without a start time of its own does not move.
  void skip(Seconds time);

 private:
  friend class QtTimer;
  using Turn = std::pair<Seconds, std::uint64_t>;
  struct Timers;

  Seconds uptime() const;
  void fireDueTimers();
  void wakeForDispatched();
  void runNextDispatched() LINEWATCH_EXCLUDES(mutex_);

  Mutex mutex_;
  /// The actions that wait for their turn, one event of `receiver_` each. They wait here and not in Qt's
  /// events because the thread sanitizer does not see the locks of Qt.
  std::deque<std::function<void()>> dispatched_ LINEWATCH_GUARDED_BY(mutex_);
  QObject receiver_;
  std::optional<Date> startsAt_;
  Clock clock_;
  /// Shared, so that a timer notices when the loop has ended.
  std::shared_ptr<Timers> timers_;
  Seconds madeAt_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace linewatch::desktop

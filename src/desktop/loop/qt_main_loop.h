#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/main_loop.h"

class QSocketNotifier;

namespace linewatch::desktop {

/// The main loop, on Qt's event loop. Qt's loop must run on the thread that made this object, under a
/// QCoreApplication.
///
/// All timers share one kernel timer on a clock that also counts while the machine sleeps: timers that came
/// due during sleep fire when the machine wakes, and an idle loop never wakes up. A timer never fires early.
/// If its tolerance allows, it fires on a whole second of that clock, together with other timers.
class QtMainLoop final : public MainLoop {
 public:
  /// Whether a clock with a start time of its own goes on from there.
  enum class Clock { running, frozen };

  /// With `startsAt` the clock shows that time now, instead of the machine's.
  explicit QtMainLoop(std::optional<Date> startsAt = std::nullopt, Clock clock = Clock::running);
  ~QtMainLoop() override;

  Date now() const override;
  bool isMainThread() const override;
  void dispatchAsync(std::function<void()> action) override;
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

  QObject receiver_;
  std::optional<Date> startsAt_;
  Clock clock_;
  /// Shared, so that a timer that outlives the loop notices it.
  std::shared_ptr<Timers> timers_;
  Seconds madeAt_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace linewatch::desktop

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

/// The main loop over Qt's, which must run on the thread that made this object, under a QCoreApplication.
///
/// All timers share one timer of the kernel, on the clock that goes on while the machine sleeps: what became
/// due in its sleep fires when it wakes, and an idle loop wakes for nothing. A timer never fires early. One
/// whose tolerance allows it fires on a whole second of that clock, together with the others.
class QtMainLoop final : public MainLoop {
 public:
  /// What the clock does that starts at a time of its own.
  enum class Clock { goesOn, standsStill };

  /// With `startsAt` the clock shows that time now, in place of the machine's.
  explicit QtMainLoop(std::optional<Date> startsAt = std::nullopt, Clock clock = Clock::goesOn);
  ~QtMainLoop() override;

  Date now() const override;
  bool isMainThread() const override;
  void dispatchAsync(std::function<void()> action) override;
  /// An interval below zero, or that is no number, counts as zero; repeats of less than a millisecond count
  /// as one.
  std::shared_ptr<Timer> scheduleTimer(Seconds interval, bool repeats, std::function<void()> action) override;

 private:
  friend class QtTimer;
  using Turn = std::pair<Seconds, std::uint64_t>;
  struct Timers;

  static Seconds uptime();
  void fireDueTimers();

  QObject receiver_;
  std::optional<Date> startsAt_;
  Clock clock_;
  Seconds madeAt_;
  /// Shared so that a timer that outlives the loop can tell.
  std::shared_ptr<Timers> timers_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace linewatch::desktop

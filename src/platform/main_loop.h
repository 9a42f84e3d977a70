#pragma once

#include <functional>
#include <memory>

#include "shared/date.h"

namespace linewatch {

/// A timer of the main loop. The loop keeps the timer and its action until the timer is invalidated or, if it
/// does not repeat, has fired. Main thread.
class Timer {
 public:
  virtual ~Timer() = default;
  /// How many seconds late the timer may fire, so that several timers can share a wake-up. 0 by default.
  virtual void setTolerance(Seconds tolerance) = 0;
  /// False after it was invalidated or, when it does not repeat, has fired.
  virtual bool isValid() const = 0;
  /// The timer does not fire any more. Does nothing when it is not valid. A timer's own action may call this.
  virtual void invalidate() = 0;
};

/// The main thread's loop and the only clock. Does not fail.
class MainLoop {
 public:
  virtual ~MainLoop() = default;

  /// The current date. Any thread.
  virtual Date now() const = 0;
  /// Whether the caller runs on the main thread. Any thread.
  virtual bool isMainThread() const = 0;
  /// Runs `action` on the main thread, after this call has returned and after all actions dispatched before
  /// it. Any thread.
  virtual void dispatchAsync(std::function<void()> action) = 0;
  /// Runs `action` on the main thread `interval` seconds from now, and every `interval` seconds if `repeats`.
  /// The timer is never null. Main thread.
  virtual std::shared_ptr<Timer> scheduleTimer(Seconds interval, bool repeats,
                                               std::function<void()> action) = 0;
};

}  // namespace linewatch

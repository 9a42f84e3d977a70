#pragma once

#include <functional>
#include <memory>

#include "shared/date.h"

namespace linewatch {

/// A timer of the main loop. The loop keeps a scheduled timer and its action until it is invalidated or, when
/// it does not repeat, has fired. Main thread.
class Timer {
 public:
  virtual ~Timer() = default;
  /// How much later than due the timer may fire so that wake-ups can be shared. None by default.
  virtual void setTolerance(Seconds tolerance) = 0;
  /// False after it was invalidated or, when it does not repeat, has fired.
  virtual bool isValid() const = 0;
  virtual void invalidate() = 0;
};

/// The main thread's loop and the one clock.
class MainLoop {
 public:
  virtual ~MainLoop() = default;

  /// Any thread.
  virtual Date now() const = 0;
  /// Any thread.
  virtual bool isMainThread() const = 0;
  /// Runs `action` on the main thread, after this call has returned and after everything dispatched before.
  /// Any thread.
  virtual void dispatchAsync(std::function<void()> action) = 0;
  /// Runs `action` on the main thread after `interval`, again and again if `repeats`. Main thread.
  virtual std::shared_ptr<Timer> scheduleTimer(Seconds interval, bool repeats,
                                               std::function<void()> action) = 0;
};

}  // namespace linewatch

#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "platform/main_loop.h"
#include "shared/mutex.h"
#include "simulation/world/transcript.h"

namespace linewatch::simulation {

/// A main loop and clock in virtual time: the clock stands still until `advance`, which takes no real time.
/// All actions run on the thread that made the loop, in an order that depends on the calls alone. Other real
/// threads may dispatch actions and read the clock.
///
/// Time is kept in whole nanoseconds since the start, so that ten steps of 0.1 s are one second. A timer that
/// is due more than 292 years ahead, where the count ends, never fires.
class VirtualMainLoop final : public MainLoop {
 public:
  /// The clock starts at `start` plus `elapsed`.
  VirtualMainLoop(Date start, Seconds elapsed, std::shared_ptr<Transcript> transcript);
  ~VirtualMainLoop() override;

  Date now() const override { return start_ + elapsed() + clockOffset_.load(); }
  /// Sets the clock ahead of the start plus the elapsed time. Timers do not follow.
  void setClockOffset(Seconds offset) { clockOffset_ = offset; }
  /// False while an action of `runElsewhere` runs.
  bool isMainThread() const override { return onMainThread_; }
  void dispatchAsync(std::function<void()> action) override;
  /// Timers fire exactly when due, and in the order of their scheduling when due at the same time. A
  /// repeating timer is due at whole multiples of its interval after it was scheduled; its interval is at
  /// least 0.1 ms, so that it fires finitely often in any time. Records "timer", with the tolerance that is
  /// set later.
  std::shared_ptr<Timer> scheduleTimer(Seconds interval, bool repeats, std::function<void()> action) override;

  /// Runs `action` after all actions dispatched before it, with `isMainThread` false.
  void runElsewhere(std::function<void()> action);
  /// Runs `action` on the main thread after `delay`; without a delay, after all actions dispatched before it.
  /// Records nothing: this is for the simulated world's own events.
  void runAfter(Seconds delay, std::function<void()> action);

  Seconds elapsed() const { return elapsed_.load(); }
  /// Runs dispatched actions, also newly dispatched ones, until none is left. No time passes.
  void runUntilIdle();
  /// Lets time pass: runs the dispatched actions and fires every timer that is due by the end, each at its
  /// time.
  void advance(Seconds seconds);
  /// Drops all dispatched actions and all timers.
  void discardAll();

 private:
  friend class VirtualTimer;
  using Nanoseconds = std::chrono::nanoseconds;
  /// When a timer is due; then, for timers due at the same time, the number of its scheduling.
  using Turn = std::pair<Nanoseconds, std::uint64_t>;
  using Timers = std::map<Turn, std::shared_ptr<class VirtualTimer>>;
  struct Dispatched {
    bool onMainThread;
    std::function<void()> action;
  };

  std::shared_ptr<class VirtualTimer> addTimer(Seconds interval, bool repeats, std::function<void()> action);
  void dispatch(Dispatched dispatched) LINEWATCH_EXCLUDES(mutex_);
  std::optional<Dispatched> takeDispatched() LINEWATCH_EXCLUDES(mutex_);
  void fireNextTimer();
  void moveTo(Nanoseconds time);

  Date start_;
  std::atomic<Nanoseconds> elapsed_;
  std::atomic<Seconds> clockOffset_ = Seconds(0);
  std::shared_ptr<Transcript> transcript_;
  Mutex mutex_;
  std::deque<Dispatched> dispatched_ LINEWATCH_GUARDED_BY(mutex_);
  /// Shared, so that a timer that outlives the loop notices that the loop is gone.
  std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
  std::uint64_t scheduledCount_ = 0;
  bool onMainThread_ = true;
};

}  // namespace linewatch::simulation

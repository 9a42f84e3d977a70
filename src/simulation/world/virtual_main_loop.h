#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/main_loop.h"
#include "simulation/world/transcript.h"

namespace linewatch::simulation {

/// The main loop and the clock in virtual time: time stands still until it is advanced, and then passes at
/// once. Everything runs on the thread that made the loop, in an order that depends on nothing but the calls
/// made. Another real thread may dispatch to it and read the clock.
///
/// Time is kept in whole nanoseconds since the start, so that ten steps of 0.1 s are one second. A timer
/// further ahead than that can count (292 years) never fires.
class VirtualMainLoop final : public MainLoop {
 public:
  /// The clock shows `start` when no time has passed; `elapsed` has passed already.
  VirtualMainLoop(Date start, Seconds elapsed, std::shared_ptr<Transcript> transcript);
  ~VirtualMainLoop() override;

  Date now() const override { return start_ + elapsed(); }
  /// False within what `runElsewhere` runs.
  bool isMainThread() const override { return onMainThread_; }
  void dispatchAsync(std::function<void()> action) override;
  /// Timers fire exactly when due; timers due at one time fire in the order in which they were scheduled. A
  /// repeating timer is due at whole multiples of its interval after it was scheduled; its interval is at
  /// least 0.1 ms, so that a stretch of time holds finitely many. The timer and its interval are recorded,
  /// with the tolerance that it has or is given later.
  std::shared_ptr<Timer> scheduleTimer(Seconds interval, bool repeats, std::function<void()> action) override;

  /// Runs `action` as another thread would, in turn with everything dispatched before.
  void runElsewhere(std::function<void()> action);
  /// Runs `action` on the main thread when `delay` has passed, in turn with everything dispatched if there is
  /// none; nothing is recorded. For the world's own doings.
  void runAfter(Seconds delay, std::function<void()> action);

  Seconds elapsed() const { return elapsed_.load(); }
  /// Runs what is dispatched, and what that dispatches, until nothing is left. No time passes.
  void runUntilIdle();
  /// Lets time pass: runs what is dispatched and every timer that becomes due up to and including the end,
  /// each at its time.
  void advance(Seconds seconds);
  /// Drops everything dispatched and every timer.
  void discardAll();

 private:
  friend class VirtualTimer;
  using Nanoseconds = std::chrono::nanoseconds;
  /// When it is due and, among those due at one time, which was scheduled first.
  using Turn = std::pair<Nanoseconds, std::uint64_t>;
  using Timers = std::map<Turn, std::shared_ptr<class VirtualTimer>>;
  struct Dispatched {
    bool onMainThread;
    std::function<void()> action;
  };

  std::shared_ptr<class VirtualTimer> addTimer(Seconds interval, bool repeats, std::function<void()> action);
  void dispatch(Dispatched dispatched);
  std::optional<Dispatched> takeDispatched();
  void fireNextTimer();
  void moveTo(Nanoseconds time);

  Date start_;
  std::atomic<Nanoseconds> elapsed_;
  std::shared_ptr<Transcript> transcript_;
  std::mutex mutex_;
  /// Under the mutex.
  std::deque<Dispatched> dispatched_;
  /// Shared so that a timer that outlives the loop can tell.
  std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
  std::uint64_t scheduledCount_ = 0;
  bool onMainThread_ = true;
};

}  // namespace linewatch::simulation

#include "simulation/world/virtual_main_loop.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace linewatch::simulation {

namespace {

using Nanoseconds = std::chrono::nanoseconds;

constexpr Seconds kShortestRepeat{1e-4};

Nanoseconds wholeNanoseconds(Seconds seconds) {
  const double count = std::round(seconds.count() * 1e9);
  // The largest count is not a double: the nearest double is above it.
  if (!(count < 9.2e18)) return Nanoseconds::max();
  return Nanoseconds(static_cast<std::int64_t>(std::max(count, 0.0)));
}

Nanoseconds later(Nanoseconds time, Nanoseconds interval) {
  return interval > Nanoseconds::max() - time ? Nanoseconds::max() : time + interval;
}

}  // namespace

class VirtualTimer final : public Timer {
 public:
  using Timers = VirtualMainLoop::Timers;
  using Turn = VirtualMainLoop::Turn;

  VirtualTimer(std::weak_ptr<Timers> timers, Turn scheduled, Seconds interval, bool repeats,
               std::function<void()> action)
      : timers_(std::move(timers)),
        scheduledAt_(scheduled.first),
        turn_(scheduled),
        interval_(repeats ? std::max(interval, kShortestRepeat) : interval),
        repeats_(repeats),
        action_(std::make_shared<const std::function<void()>>(std::move(action))) {
    setDue(1);
  }

  void setTolerance(Seconds tolerance) override {
    if (recorder_) recorder_(tolerance);
  }
  bool isValid() const override { return action_ != nullptr; }
  void invalidate() override {
    if (const auto timers = timers_.lock()) {
      const auto self = timers->find(turn_);
      if (self != timers->end() && self->second.get() == this) timers->erase(self);
    }
    action_ = nullptr;
  }

  const Turn& turn() const { return turn_; }
  bool isRecorded() const { return recorder_ != nullptr; }
  /// Marks the timer as one of the widget's, whose firings are recorded. The recorder gets the tolerance when
  /// it is set.
  void setRecorder(std::function<void(Seconds)> recorder) { recorder_ = std::move(recorder); }

  /// Counts a firing and returns the action to run. A repeating timer then has its next due time.
  std::shared_ptr<const std::function<void()>> takeFiring() {
    if (!repeats_) return std::exchange(action_, nullptr);
    setDue(++firing_);
    return action_;
  }

 private:
  void setDue(std::uint64_t firing) {
    const auto interval = wholeNanoseconds(interval_ * static_cast<double>(firing));
    turn_.first = later(scheduledAt_, interval);
  }

  std::weak_ptr<Timers> timers_;
  Nanoseconds scheduledAt_;
  Turn turn_;
  Seconds interval_;
  bool repeats_;
  std::uint64_t firing_ = 1;
  /// Null when the timer is not valid. Shared so that a timer can be invalidated by its own action.
  std::shared_ptr<const std::function<void()>> action_;
  std::function<void(Seconds)> recorder_;
};

VirtualMainLoop::VirtualMainLoop(Date start, Seconds elapsed, std::shared_ptr<Transcript> transcript)
    : start_(start), elapsed_(wholeNanoseconds(elapsed)), transcript_(std::move(transcript)) {
  transcript_->setTime(elapsed_.load());
}

VirtualMainLoop::~VirtualMainLoop() { discardAll(); }

void VirtualMainLoop::dispatchAsync(std::function<void()> action) { dispatch({true, std::move(action)}); }

void VirtualMainLoop::runElsewhere(std::function<void()> action) { dispatch({false, std::move(action)}); }

void VirtualMainLoop::dispatch(Dispatched dispatched) {
  const MutexLock lock(mutex_);
  dispatched_.push_back(std::move(dispatched));
}

/// Absent when nothing is left.
std::optional<VirtualMainLoop::Dispatched> VirtualMainLoop::takeDispatched() {
  const MutexLock lock(mutex_);
  if (dispatched_.empty()) return std::nullopt;
  std::optional<Dispatched> next(std::move(dispatched_.front()));
  dispatched_.pop_front();
  return next;
}

std::shared_ptr<Timer> VirtualMainLoop::scheduleTimer(Seconds interval, bool repeats,
                                                      std::function<void()> action) {
  auto timer = addTimer(interval, repeats, std::move(action));
  const std::size_t place = transcript_->record(
      "timer",
      {{"kind", repeats ? "repeating" : "oneShot"}, {"interval", interval.count()}, {"tolerance", 0.0}});
  timer->setRecorder([place, transcript = transcript_](Seconds tolerance) {
    transcript->amend(place, "tolerance", tolerance.count());
  });
  return timer;
}

void VirtualMainLoop::runAfter(Seconds delay, std::function<void()> action) {
  if (delay > Seconds(0)) {
    addTimer(delay, false, std::move(action));
  } else {
    dispatchAsync(std::move(action));
  }
}

std::shared_ptr<VirtualTimer> VirtualMainLoop::addTimer(Seconds interval, bool repeats,
                                                        std::function<void()> action) {
  auto timer = std::make_shared<VirtualTimer>(timers_, Turn{elapsed_.load(), scheduledCount_++}, interval,
                                              repeats, std::move(action));
  timers_->emplace(timer->turn(), timer);
  return timer;
}

void VirtualMainLoop::runUntilIdle() {
  while (const auto next = takeDispatched()) {
    const bool wasOnMainThread = std::exchange(onMainThread_, next->onMainThread);
    next->action();
    onMainThread_ = wasOnMainThread;
  }
}

void VirtualMainLoop::advance(Seconds seconds) {
  const Nanoseconds end = later(elapsed_.load(), wholeNanoseconds(seconds));
  runUntilIdle();
  while (!timers_->empty() && timers_->begin()->first.first <= end && end != Nanoseconds::max()) {
    fireNextTimer();
    runUntilIdle();
  }
  moveTo(end);
}

void VirtualMainLoop::fireNextTimer() {
  const auto [turn, timer] = *timers_->begin();
  timers_->erase(timers_->begin());
  moveTo(turn.first);
  const auto action = timer->takeFiring();
  if (timer->isValid()) timers_->emplace(timer->turn(), timer);
  if (timer->isRecorded()) transcript_->record("timerFired");
  (*action)();
}

void VirtualMainLoop::moveTo(Nanoseconds time) {
  const Nanoseconds now = std::max(elapsed_.load(), time);
  elapsed_ = now;
  transcript_->setTime(now);
}

void VirtualMainLoop::discardAll() {
  // A dropped action may, when it is destroyed, invalidate timers or dispatch more actions.
  while (takeDispatched() || !timers_->empty()) {
    const auto timers = std::exchange(*timers_, {});
    for (const auto& [turn, timer] : timers) timer->invalidate();
  }
}

}  // namespace linewatch::simulation

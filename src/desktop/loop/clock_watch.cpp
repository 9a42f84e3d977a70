#include "desktop/loop/clock_watch.h"

#include <QSocketNotifier>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <utility>

#include <sys/timerfd.h>
#include <unistd.h>

namespace linewatch::desktop {

namespace {

/// Corrections of a clock that follows a time server are much smaller.
constexpr Seconds kClockTolerance{30};
constexpr Seconds kShortestSleep{5};

Seconds timeOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return Seconds(static_cast<double>(time.tv_sec)) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Sets a timer that never expires. When the clock is set or the machine resumes from sleep, the kernel
/// cancels the timer, and so wakes the program.
bool armForClockChange(int descriptor) {
  itimerspec never{};
  never.it_value.tv_sec = static_cast<time_t>(timeOf(CLOCK_REALTIME).count() + 100.0 * 365 * 86400);
  return timerfd_settime(descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr) == 0;
}

}  // namespace

ClockReading readClocks() {
  return {.realTime = timeOf(CLOCK_REALTIME),
          .sinceStart = timeOf(CLOCK_BOOTTIME),
          .awake = timeOf(CLOCK_MONOTONIC)};
}

bool hasJumped(const ClockReading& before, const ClockReading& after) {
  const Seconds passed = after.sinceStart - before.sinceStart;
  const Seconds slept = passed - (after.awake - before.awake);
  const Seconds set = after.realTime - before.realTime - passed;
  return slept > kShortestSleep || std::abs(set.count()) > kClockTolerance.count();
}

void watchClock(QObject& owner, std::function<void()> changed) {
  const int descriptor = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
  if (descriptor < 0) return;
  auto* const notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, &owner);
  QObject::connect(notifier, &QObject::destroyed, [descriptor] { close(descriptor); });
  QObject::connect(notifier, &QSocketNotifier::activated, &owner,
                   [descriptor, notifier, changed = std::move(changed)] {
                     std::uint64_t expirations = 0;
                     // Fails with ECANCELED. This is how the kernel announces the change.
                     [[maybe_unused]] const auto size = read(descriptor, &expirations, sizeof expirations);
                     if (!armForClockChange(descriptor)) notifier->setEnabled(false);
                     changed();
                   });
  if (!armForClockChange(descriptor)) notifier->setEnabled(false);
}

}  // namespace linewatch::desktop

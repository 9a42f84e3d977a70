#pragma once

#include <QObject>
#include <functional>

#include "shared/date.h"

namespace linewatch::desktop {

/// The machine's clocks at one moment.
struct ClockReading {
  /// The time of day, which can be set.
  Seconds realTime{};
  /// Since the machine started, with and without the time it slept.
  Seconds sinceStart{};
  Seconds awake{};
};

ClockReading readClocks();

/// Whether the machine slept between two readings, or its clock was set by more than half a minute.
bool hasJumped(const ClockReading& before, const ClockReading& after);

/// Calls `changed` after the machine woke up, and after its clock was set by any amount, as long as `owner`
/// lives. Wakes the program at no other time. Needs a QCoreApplication; main thread.
void watchClock(QObject& owner, std::function<void()> changed);

}  // namespace linewatch::desktop

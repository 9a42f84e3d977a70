#pragma once

#include <QObject>
#include <functional>

#include "shared/date.h"

namespace linewatch::desktop {

/// The times of the machine's clocks.
struct ClockReading {
  /// The time of day, which can be set.
  Seconds realTime{};
  /// The time since the machine started, with and without sleep.
  Seconds sinceStart{};
  Seconds awake{};
};

ClockReading readClocks();

/// Whether the machine slept between two readings, or its clock was set by more than half a minute.
bool hasJumped(const ClockReading& before, const ClockReading& after);

/// Calls `changed` after the machine has resumed from sleep, and after its clock has been set by any amount.
/// Ends with `owner`. The program is not woken up at other times. Needs a QCoreApplication; main thread.
void watchClock(QObject& owner, std::function<void()> changed);

}  // namespace linewatch::desktop

#pragma once

#include <chrono>
#include <string>

namespace linewatch {

/// A length of time in seconds.
using Seconds = std::chrono::duration<double>;

/// A point in time, in seconds since 1970-01-01T00:00:00Z. The current date comes only from the installed
/// platform's main loop.
using Date = std::chrono::time_point<std::chrono::system_clock, Seconds>;

/// Since 1970-01-01T00:00:00Z.
inline double secondsOf(Date date) { return date.time_since_epoch().count(); }

/// For logs, e.g. "2026-11-24T08:00:00Z", with milliseconds unless they are 0. A date thousands of years away
/// is shown as its number of seconds.
std::string description(Date date);

}  // namespace linewatch

#pragma once

#include <chrono>
#include <string>

namespace linewatch {

/// A length of time in seconds.
using Seconds = std::chrono::duration<double>;

/// A point in time, in seconds since 1970-01-01T00:00:00Z. Only the installed platform's main loop says what
/// time it is now.
using Date = std::chrono::time_point<std::chrono::system_clock, Seconds>;

/// Since 1970-01-01T00:00:00Z.
inline double secondsOf(Date date) { return date.time_since_epoch().count(); }

/// For logs: "2026-11-24T08:00:00Z", with the milliseconds where there are any. A date thousands of years
/// away is its number of seconds.
std::string description(Date date);

}  // namespace linewatch

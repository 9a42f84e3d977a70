#pragma once

#include <chrono>

namespace linewatch {

/// A length of time in seconds.
using Seconds = std::chrono::duration<double>;

/// A point in time, in seconds since 1970-01-01T00:00:00Z. Only the installed platform's main loop says what
/// time it is now.
using Date = std::chrono::time_point<std::chrono::system_clock, Seconds>;

}  // namespace linewatch

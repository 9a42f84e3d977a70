#pragma once

#include <chrono>
#include <stop_token>
#include <string>

#include "shared/outcome.h"

namespace linewatch {

/// The time limit of a key command, long enough to type the passphrase of a key ring.
inline constexpr std::chrono::seconds kKeyCommandTimeout{60};

/// Runs the command, which is split by `shellWords` and found on the PATH, without input, and gives the first
/// line of its output. What it writes to standard error is dropped. Blocks; a requested stop or the end of
/// the time kills the command and those that it started. Any thread.
///
/// An error names the program, never its arguments or its output. It fails when the command cannot be run,
/// ends with another status than 0, or prints no line.
Outcome<std::string> keyFromCommand(const std::string& command, const std::stop_token& stop,
                                    std::chrono::milliseconds timeout = kKeyCommandTimeout);

}  // namespace linewatch

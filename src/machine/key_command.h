#pragma once

#include <chrono>
#include <stop_token>
#include <string>

#include "shared/outcome.h"

namespace linewatch {

/// The time limit of a key command. It is long enough to type the passphrase of a key ring.
inline constexpr std::chrono::seconds kKeyCommandTimeout{60};

/// Runs the command and returns the first line of its output. The command is split by `shellWords` and found
/// on the PATH. It has no input, and its standard error is dropped. Blocks. A requested stop, or the end of
/// the time limit, kills the command and all programs that it has started. Any thread.
///
/// An error names the program, never its arguments or output. It is an error if the command cannot be run,
/// ends with another status than 0, or prints no line.
Outcome<std::string> keyFromCommand(const std::string& command, const std::stop_token& stop,
                                    std::chrono::milliseconds timeout = kKeyCommandTimeout);

}  // namespace linewatch

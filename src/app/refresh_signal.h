#pragma once

#include <csignal>

namespace linewatch::app {

/// Asks a command with --watch for news at once: `pkill -USR1 -x linewatch-watch`.
inline constexpr int kRefreshSignal = SIGUSR1;

/// The name of the process of such a command, so that the signal can be sent to no other one. The system
/// keeps 15 characters.
inline constexpr const char* kWatchingProcessName = "linewatch-watch";

/// Handles the signal by doing nothing, for the user who sends it to every process of the program. It is not
/// ignored, because child processes would inherit that. Can be called before libraries initialize.
inline void surviveRefreshSignal() {
  std::signal(kRefreshSignal, [](int) {});
}

}  // namespace linewatch::app

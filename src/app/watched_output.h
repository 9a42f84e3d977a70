#pragma once

#include <array>
#include <csignal>
#include <functional>
#include <memory>
#include <string_view>

#include "app/refresh_signal.h"

class QSocketNotifier;

namespace linewatch::app {

/// Standard output and the signals of a command that goes on until nobody needs it any more: SIGUSR1 asks for
/// news at once, and SIGINT, SIGTERM and the end of the reader end the command. One at a time, under a
/// QCoreApplication; main thread.
class WatchedOutput {
 public:
  explicit WatchedOutput(std::function<void()> refresh);
  ~WatchedOutput();
  WatchedOutput(const WatchedOutput&) = delete;
  WatchedOutput& operator=(const WatchedOutput&) = delete;

  /// Writes all of the text at once. Does nothing once the command must end.
  void write(std::string_view text);
  /// Runs the main loop until the command must end. Returns 0 after a signal or the end of the reader, or the
  /// error number of the write that failed, e.g. ENOSPC.
  int run() const;

 private:
  static constexpr std::array<int, 4> kSignals = {kRefreshSignal, SIGINT, SIGTERM, SIGPIPE};

  void takeSignals();
  void end(int error);

  std::function<void()> refresh_;
  std::array<struct sigaction, kSignals.size()> before_{};
  /// Each waits for a signal or for the end of the reader.
  std::unique_ptr<QSocketNotifier> signals_, reader_;
  bool hasEnded_ = false;
  int error_ = 0;
};

}  // namespace linewatch::app

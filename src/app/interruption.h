#pragma once

#include <csignal>

namespace linewatch::app {

/// While this object lives, Control-C does not end the program but is noted. One at a time. Main thread.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// True after Control-C.
  static bool isRequested();

 private:
  struct sigaction before_ {};
};

/// The exit status of a command that Control-C has ended, as shells give it.
inline constexpr int kInterruptedStatus = 130;

}  // namespace linewatch::app

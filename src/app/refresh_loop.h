#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/main_loop.h"
#include "shared/date.h"

namespace linewatch::app {

/// Looks for news again and again: after each refresh interval, earlier when it is known that something will
/// change, and at once when asked to. One look at a time. Main thread.
class RefreshLoop {
 public:
  struct Options {
    /// The time between the end of a look and the next one.
    Seconds refresh{120};
    /// When the news will change by themselves, e.g. because an incident ends. Absent: not known.
    std::function<std::optional<Date>()> nextChange = [] { return std::nullopt; };
  };
  /// Starts a look, and calls `done` at its end, at once or later.
  using Look = std::function<void(std::function<void()> done)>;

  /// The main loop must outlive this object.
  RefreshLoop(MainLoop& mainLoop, Look look, Options options);
  ~RefreshLoop();
  RefreshLoop(const RefreshLoop&) = delete;
  RefreshLoop& operator=(const RefreshLoop&) = delete;

  /// The time between the end of a look and the next one from now on, also of the look that comes next.
  void setRefresh(Seconds refresh);
  /// Looks at once. During a look it looks again at its end, because the running one may be too early.
  void refreshNow();

 private:
  void didLook();
  void scheduleLook();
  void cancelTimer();

  MainLoop& mainLoop_;
  Look look_;
  Options options_;
  bool isLooking_ = false;
  bool mustLookAgain_ = false;
  /// The end of the last look, after which the next one waits. Absent before the first end and during a look.
  std::optional<Date> ended_;
  std::shared_ptr<Timer> timer_;
  /// Expires with this object. A look may end later.
  std::shared_ptr<RefreshLoop*> self_ = std::make_shared<RefreshLoop*>(this);
};

}  // namespace linewatch::app

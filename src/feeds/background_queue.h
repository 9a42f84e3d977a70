#pragma once

#include <functional>
#include <memory>
#include <thread>

namespace linewatch {

/// Runs things on one thread of its own, one after the other in the order in which they were posted. The
/// thread starts with the first of them.
class BackgroundQueue {
 public:
  BackgroundQueue();
  /// As `finish`.
  ~BackgroundQueue();
  BackgroundQueue(const BackgroundQueue&) = delete;
  BackgroundQueue& operator=(const BackgroundQueue&) = delete;

  /// Runs `action` exactly once, on the queue's thread. False, and it is not run at all, when the queue has
  /// been finished. Any thread.
  bool post(std::function<void()> action);
  /// Waits until everything posted has run, and ends the thread. What runs on the queue itself may call this
  /// too, and then it does not wait. Whoever owns what the actions use calls it before that goes.
  void finish();

 private:
  struct Posted;

  std::shared_ptr<Posted> posted_;
  std::thread thread_;
};

}  // namespace linewatch

#pragma once

#include <functional>
#include <memory>

namespace linewatch {

/// Runs posted actions in order on one thread of its own, which starts with the first action.
class BackgroundQueue {
 public:
  BackgroundQueue();
  /// Calls `finish`.
  ~BackgroundQueue();
  BackgroundQueue(const BackgroundQueue&) = delete;
  BackgroundQueue& operator=(const BackgroundQueue&) = delete;

  /// Runs `action` exactly once, on the queue's thread. False when the queue is finished: then it never runs.
  /// Any thread.
  bool post(std::function<void()> action);
  /// Waits until all posted actions have run, and ends the thread. An action may call this too; then it does
  /// not wait. Call it before anything that the actions use is destroyed.
  void finish();

 private:
  struct Posted;

  std::shared_ptr<Posted> posted_;
};

}  // namespace linewatch

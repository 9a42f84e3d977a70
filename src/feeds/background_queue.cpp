#include "feeds/background_queue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace linewatch {

/// Shared with the thread, which may outlive the queue when the queue ends on it.
struct BackgroundQueue::Posted {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::function<void()>> actions;
  bool isFinished = false;

  /// Waits for an action; an empty one when there will be no more.
  std::function<void()> take() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return isFinished || !actions.empty(); });
    if (actions.empty()) return {};
    std::function<void()> action = std::move(actions.front());
    actions.pop_front();
    return action;
  }
};

BackgroundQueue::BackgroundQueue() : posted_(std::make_shared<Posted>()) {}

BackgroundQueue::~BackgroundQueue() { finish(); }

bool BackgroundQueue::post(std::function<void()> action) {
  {
    const std::lock_guard lock(posted_->mutex);
    if (posted_->isFinished) return false;
    posted_->actions.push_back(std::move(action));
    if (!thread_.joinable()) {
      thread_ = std::thread([posted = posted_] {
        while (auto next = posted->take()) next();
      });
    }
  }
  posted_->changed.notify_one();
  return true;
}

void BackgroundQueue::finish() {
  std::thread thread;
  {
    const std::lock_guard lock(posted_->mutex);
    posted_->isFinished = true;
    thread = std::move(thread_);
  }
  posted_->changed.notify_one();
  if (!thread.joinable()) return;
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

}  // namespace linewatch

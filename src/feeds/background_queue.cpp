#include "feeds/background_queue.h"

#include <condition_variable>
#include <deque>
#include <thread>
#include <utility>

#include "shared/mutex.h"

namespace linewatch {

/// Shared with the thread, which outlives a queue that is destroyed by one of its actions.
struct BackgroundQueue::Posted {
  Mutex mutex;
  std::condition_variable_any changed;
  std::deque<std::function<void()>> actions LINEWATCH_GUARDED_BY(mutex);
  bool isFinished LINEWATCH_GUARDED_BY(mutex) = false;
  std::thread thread LINEWATCH_GUARDED_BY(mutex);

  /// Waits for the next action; an empty one after the last.
  std::function<void()> take() {
    MutexLock lock(mutex);
    while (!isFinished && actions.empty()) changed.wait(lock);
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
    const MutexLock lock(posted_->mutex);
    if (posted_->isFinished) return false;
    posted_->actions.push_back(std::move(action));
    if (!posted_->thread.joinable()) {
      posted_->thread = std::thread([posted = posted_] {
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
    const MutexLock lock(posted_->mutex);
    posted_->isFinished = true;
    thread = std::move(posted_->thread);
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

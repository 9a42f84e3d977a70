#include "storage/write_queue.h"

#include <chrono>
#include <utility>

namespace linewatch {

namespace {

/// The pause between two tries. Each try also waits for the busy timeout.
constexpr std::chrono::milliseconds kRetryDelay{50};
constexpr int kTriesAtClose = 20;

}  // namespace

void WriteQueue::post(Write write) {
  const MutexLock lock(mutex_);
  writes_.push_back(std::move(write));
  if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
  changed_.notify_all();
}

bool WriteQueue::waitUntilDone() {
  MutexLock lock(mutex_);
  // The running try may have begun before the file became free, so the next one counts.
  const std::uint64_t patience = failedTries_ + 2;
  changed_.notify_all();
  while (!writes_.empty() && failedTries_ < patience) changed_.wait(lock);
  return writes_.empty();
}

std::size_t WriteQueue::close() {
  std::thread thread;
  {
    const MutexLock lock(mutex_);
    isClosing_ = true;
    thread = std::move(thread_);
    changed_.notify_all();
  }
  if (thread.joinable()) thread.join();
  const MutexLock lock(mutex_);
  return writes_.size();
}

void WriteQueue::run() {
  int triesLeft = kTriesAtClose;
  MutexLock lock(mutex_);
  while (triesLeft > 0) {
    while (writes_.empty() && !isClosing_) changed_.wait(lock);
    if (writes_.empty()) return;
    // A reference to the front stays valid while writes are added at the back.
    const Write& write = writes_.front();
    lock.unlock();
    const bool isDone = write();
    lock.lock();
    if (isDone) {
      writes_.pop_front();
    } else {
      ++failedTries_;
      if (isClosing_) --triesLeft;
    }
    changed_.notify_all();
    if (!isDone) changed_.wait_for(lock, kRetryDelay);
  }
}

}  // namespace linewatch

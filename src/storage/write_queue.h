#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <thread>

#include "shared/mutex.h"

namespace linewatch {

/// Runs writes on a thread of its own, one after the other in the order in which they were posted. A write
/// that finds the file in use is retried until it is done, and the later writes wait. Any thread. The thread
/// starts with the first write.
class WriteQueue {
 public:
  /// Returns false when it has to be retried. Waits for a bounded time only, and does not call the queue.
  using Write = std::function<bool()>;

  WriteQueue() = default;
  /// As `close`.
  ~WriteQueue() { close(); }
  WriteQueue(const WriteQueue&) = delete;
  WriteQueue& operator=(const WriteQueue&) = delete;

  /// Must not be called after `close`.
  void post(Write write) LINEWATCH_EXCLUDES(mutex_);
  /// Waits until all writes are done and returns true. Returns false when a retry still finds the file in
  /// use.
  bool waitUntilDone() LINEWATCH_EXCLUDES(mutex_);
  /// Runs the posted writes and ends the thread. After 20 tries that found the file in use, 50 ms apart, it
  /// gives up the remaining writes. Returns their number.
  std::size_t close() LINEWATCH_EXCLUDES(mutex_);

 private:
  void run() LINEWATCH_EXCLUDES(mutex_);

  Mutex mutex_;
  /// Notified when a write is posted, done or failed, and at `close`.
  std::condition_variable_any changed_;
  std::deque<Write> writes_ LINEWATCH_GUARDED_BY(mutex_);
  std::uint64_t failedTries_ LINEWATCH_GUARDED_BY(mutex_) = 0;
  bool isClosing_ LINEWATCH_GUARDED_BY(mutex_) = false;
  std::thread thread_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace linewatch

#pragma once

#include <mutex>

// Attributes for clang's thread safety analysis; empty for other compilers. The standard library's own mutex
// does not have these attributes.
#if defined(__clang__)
#define LINEWATCH_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define LINEWATCH_THREAD_ATTRIBUTE(x)
#endif

/// A member that is read and written only while the mutex is held.
#define LINEWATCH_GUARDED_BY(mutex) LINEWATCH_THREAD_ATTRIBUTE(guarded_by(mutex))
/// A function whose caller holds the mutex.
#define LINEWATCH_REQUIRES(mutex) LINEWATCH_THREAD_ATTRIBUTE(requires_capability(mutex))
/// A function that locks the mutex, so its caller must not hold it.
#define LINEWATCH_EXCLUDES(mutex) LINEWATCH_THREAD_ATTRIBUTE(locks_excluded(mutex))

namespace linewatch {

/// A std::mutex that clang's analysis follows.
class LINEWATCH_THREAD_ATTRIBUTE(capability("mutex")) Mutex {
 public:
  void lock() LINEWATCH_THREAD_ATTRIBUTE(acquire_capability()) { mutex_.lock(); }
  void unlock() LINEWATCH_THREAD_ATTRIBUTE(release_capability()) { mutex_.unlock(); }
  bool try_lock() LINEWATCH_THREAD_ATTRIBUTE(try_acquire_capability(true)) { return mutex_.try_lock(); }

 private:
  std::mutex mutex_;
};

/// Holds a Mutex until the end of the scope. To wait, hand it to a std::condition_variable_any.
class LINEWATCH_THREAD_ATTRIBUTE(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) LINEWATCH_THREAD_ATTRIBUTE(acquire_capability(mutex)) : mutex_(mutex) {
    mutex_.lock();
  }
  ~MutexLock() LINEWATCH_THREAD_ATTRIBUTE(release_capability()) { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

  void lock() LINEWATCH_THREAD_ATTRIBUTE(acquire_capability()) { mutex_.lock(); }
  void unlock() LINEWATCH_THREAD_ATTRIBUTE(release_capability()) { mutex_.unlock(); }

 private:
  Mutex& mutex_;
};

}  // namespace linewatch

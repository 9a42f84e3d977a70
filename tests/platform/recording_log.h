#pragma once

#include <string>
#include <vector>

#include "platform/log.h"
#include "shared/mutex.h"

namespace linewatch {

/// Records the lines for a test to read.
class RecordingLog final : public Log {
 public:
  void write(const LogMessage& message) override {
    const MutexLock lock(mutex_);
    lines_.push_back(message.text(false));
  }
  bool isEnabled(LogLevel) const override { return true; }

  std::vector<std::string> lines() const {
    const MutexLock lock(mutex_);
    return lines_;
  }

 private:
  mutable Mutex mutex_;
  std::vector<std::string> lines_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace linewatch

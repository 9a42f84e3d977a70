#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/log.h"

namespace linewatch {

/// Keeps the lines for a test to read.
class RecordingLog final : public Log {
 public:
  void write(const LogMessage& message) override {
    const std::lock_guard lock(mutex_);
    lines_.push_back(message.text(false));
  }
  bool isEnabled(LogLevel) const override { return true; }

  std::vector<std::string> lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace linewatch

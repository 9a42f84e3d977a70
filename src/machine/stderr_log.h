#pragma once

#include <cstdio>

#include "platform/log.h"

namespace linewatch {

/// Writes each message as one line, "linewatch: TEXT", to standard error. Errors are always written, without
/// their private arguments. When verbose, messages of every level are written with all their arguments. Each
/// line is a terminalLine, since feeds and file names appear in messages. Any thread.
class StderrLog final : public Log {
 public:
  explicit StderrLog(bool isVerbose, std::FILE* stream = stderr) : isVerbose_(isVerbose), stream_(stream) {}

  void write(const LogMessage& message) override;
  bool isEnabled(LogLevel level) const override { return isVerbose_ || level == LogLevel::error; }

 private:
  bool isVerbose_;
  std::FILE* stream_;
};

}  // namespace linewatch

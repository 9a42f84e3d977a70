#pragma once

#include <cstdio>

#include "platform/log.h"

namespace linewatch {

/// Writes each message to standard error as one line, "linewatch: TEXT". Errors are always written, without
/// their private arguments. If verbose, messages of every level are written, with all arguments. Each line is
/// a terminalLine, because messages contain texts of feeds and names of files. Any thread.
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

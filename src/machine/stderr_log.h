#pragma once

#include <cstdio>
#include <string>

#include "platform/log.h"

namespace linewatch {

/// The text as one line that a terminal prints and does not obey.
std::string plainLine(std::string text);

/// Writes each line as "linewatch: TEXT" to standard error: errors always, with private arguments left out;
/// when verbose, lines of every level with all their arguments. What controls a terminal is replaced, so that
/// a feed's text cannot.
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

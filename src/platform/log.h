#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "shared/value.h"

namespace linewatch {

enum class LogLevel { debug, error };

/// The category of every line that the system logs.
inline constexpr std::string_view kLogCategory = "LineWatch";

/// One line for the log: a format text whose placeholders (`%{private}@`, `%@`, `%lu`, `%.2f`) stand for the
/// arguments in order. An argument at a private placeholder carries user data and is left out of collected
/// logs.
struct LogMessage {
  LogLevel level = LogLevel::debug;
  std::string_view category = kLogCategory;
  std::string_view format;
  std::vector<Value> arguments;

  /// The line with its arguments; private ones as "<private>" when `redacted`.
  std::string text(bool redacted) const;
};

/// The platform's log. Any thread.
class Log {
 public:
  virtual ~Log() = default;
  virtual void write(const LogMessage& message) = 0;
  /// False when a line of this level would be thrown away, so that its arguments need not be made.
  virtual bool isEnabled(LogLevel level) const = 0;
};

/// Writes to the installed platform's log under the system's category.
void logDebug(std::string_view format, std::initializer_list<Value> arguments = {});
void logError(std::string_view format, std::initializer_list<Value> arguments = {});

}  // namespace linewatch

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "shared/value.h"

namespace linewatch {

/// `debug`: for diagnosis only. `error`: something failed that somebody should know.
enum class LogLevel { debug, error };

/// The category of every line that the system logs.
inline constexpr std::string_view kLogCategory = "LineWatch";

/// One line for the log: a format whose placeholders (`%{private}@`, `%@`, `%lu`, `%.2f`) are replaced by the
/// arguments in order. The argument of a `%{private}@` is user data and is left out of collected logs.
struct LogMessage {
  LogLevel level = LogLevel::debug;
  std::string_view category = kLogCategory;
  std::string_view format;
  std::vector<Value> arguments;

  /// The line with its arguments filled in. When `redacted`, a private one is shown as "<private>".
  std::string text(bool redacted) const;
};

/// The platform's log. Any thread.
class Log {
 public:
  virtual ~Log() = default;

  /// Writes the line, unless its level is not enabled. A line that cannot be written is dropped.
  virtual void write(const LogMessage& message) = 0;
  /// False when lines of this level are dropped, so that callers need not make their arguments.
  virtual bool isEnabled(LogLevel level) const = 0;
};

/// Writes to the log of the installed platform in the category `kLogCategory`. Without an installed platform
/// errors go to standard error, and debug lines are dropped. Any thread.
void logDebug(std::string_view format, std::initializer_list<Value> arguments = {});
void logError(std::string_view format, std::initializer_list<Value> arguments = {});

}  // namespace linewatch

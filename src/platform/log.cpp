#include "platform/log.h"

#include <array>
#include <cstdio>

#include "platform/installed_platform.h"
#include "platform/platform.h"

namespace linewatch {

namespace {

struct Placeholder {
  std::string_view text;
  bool isPrivate;
};

constexpr std::array kPlaceholders = {Placeholder{"%{private}@", true}, Placeholder{"%@", false},
                                      Placeholder{"%lu", false}, Placeholder{"%.2f", false}};

const Placeholder* placeholderAt(std::string_view format) {
  for (const Placeholder& placeholder : kPlaceholders) {
    if (format.starts_with(placeholder.text)) return &placeholder;
  }
  return nullptr;
}

std::string argumentText(const Placeholder& placeholder, const Value& argument) {
  const double* number = argument.get<double>();
  if (placeholder.text != "%.2f" || number == nullptr) return argument.description();
  char text[64];
  std::snprintf(text, sizeof text, "%.2f", *number);
  return text;
}

/// A host that uses only feeds installs no platform, but its errors must not disappear.
void writeWithoutPlatform(const LogMessage& message) {
  if (message.level != LogLevel::error) return;
  const std::string line = "linewatch: " + message.text(/*redacted=*/true) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void writeMessage(LogLevel level, std::string_view format, std::initializer_list<Value> arguments) {
  Platform* const platform = installedPlatform();
  if (platform == nullptr) return writeWithoutPlatform({level, kLogCategory, format, arguments});
  Log& log = platform->log();
  if (log.isEnabled(level)) log.write({level, kLogCategory, format, arguments});
}

}  // namespace

std::string LogMessage::text(bool redacted) const {
  std::string line;
  std::size_t next = 0;
  for (std::size_t i = 0; i < format.size();) {
    const Placeholder* placeholder = placeholderAt(format.substr(i));
    if (placeholder == nullptr || next == arguments.size()) {
      line += format[i++];
      continue;
    }
    const Value& argument = arguments[next++];
    line += redacted && placeholder->isPrivate ? "<private>" : argumentText(*placeholder, argument);
    i += placeholder->text.size();
  }
  return line;
}

void logDebug(std::string_view format, std::initializer_list<Value> arguments) {
  writeMessage(LogLevel::debug, format, arguments);
}

void logError(std::string_view format, std::initializer_list<Value> arguments) {
  writeMessage(LogLevel::error, format, arguments);
}

}  // namespace linewatch

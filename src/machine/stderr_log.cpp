#include "machine/stderr_log.h"

#include <algorithm>
#include <string>

namespace linewatch {

namespace {

bool isControl(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return code < 0x20 || code == 0x7F;
}

/// In UTF-8, U+0080 to U+009F are C2 followed by 80 to 9F; a terminal may take them for escapes.
bool isControl(char first, char second) {
  const auto code = static_cast<unsigned char>(second);
  return first == '\xC2' && code >= 0x80 && code < 0xA0;
}

}  // namespace

std::string plainLine(std::string text) {
  std::ranges::replace_if(text, static_cast<bool (*)(char)>(isControl), ' ');
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (isControl(text[i - 1], text[i])) text.replace(i - 1, 2, "  ");
  }
  return text;
}

void StderrLog::write(const LogMessage& message) {
  if (!isEnabled(message.level)) return;
  // One call a line: lines of several threads do not mix.
  const std::string line = "linewatch: " + plainLine(message.text(!isVerbose_)) + "\n";
  std::fwrite(line.data(), 1, line.size(), stream_);
}

}  // namespace linewatch

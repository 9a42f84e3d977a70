#include "machine/stderr_log.h"

#include <string>

#include "machine/terminal_line.h"

namespace linewatch {

void StderrLog::write(const LogMessage& message) {
  if (!isEnabled(message.level)) return;
  // One call for each line, so that the lines of several threads do not mix.
  const std::string line = "linewatch: " + terminalLine(message.text(!isVerbose_)) + "\n";
  std::fwrite(line.data(), 1, line.size(), stream_);
}

}  // namespace linewatch

#include "app/key_prompt.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <optional>

#include <termios.h>
#include <unistd.h>

#include "machine/terminal_line.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// Bytes.
constexpr std::size_t kLongestKey = 8192;

constexpr char kInterrupt = 3;   // Control-C
constexpr char kEndOfInput = 4;  // Control-D
constexpr char kEraseLine = 21;  // Control-U

/// Turns off the echo of the terminal on standard input while this object lives. Keys such as Control-C are
/// read as characters, so that the program cannot end while the echo is off. Does nothing without a terminal.
class QuietTerminal {
 public:
  QuietTerminal() {
    if (::tcgetattr(STDIN_FILENO, &before_) != 0) return;
    termios quiet = before_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG);
    quiet.c_cc[VMIN] = 1;
    quiet.c_cc[VTIME] = 0;
    isQuiet_ = ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
  }
  QuietTerminal(const QuietTerminal&) = delete;
  QuietTerminal& operator=(const QuietTerminal&) = delete;
  ~QuietTerminal() {
    if (isQuiet_) ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
  }

  bool isQuiet() const { return isQuiet_; }

 private:
  termios before_{};
  bool isQuiet_ = false;
};

/// Reads one character at a time, because the next line of a pipe may be another key. Absent at the end of
/// the input.
std::optional<char> nextCharacter() {
  char character = 0;
  ssize_t count = 0;
  do count = ::read(STDIN_FILENO, &character, 1);
  while (count < 0 && errno == EINTR);
  return count == 1 ? std::optional(character) : std::nullopt;
}

/// Empty at the end of the input, or if the user cancels.
std::string readLine(bool isTerminal) {
  std::string line;
  while (const auto character = nextCharacter()) {
    if (*character == '\n' || *character == '\r' || line.size() > kLongestKey) return line;
    if (!isTerminal) {
      line += *character;
    } else if (*character == kInterrupt || *character == kEndOfInput) {
      return {};
    } else if (*character == '\b' || *character == '\x7F') {
      if (!line.empty()) line.pop_back();
    } else if (*character == kEraseLine) {
      line.clear();
    } else {
      line += *character;
    }
  }
  return isTerminal ? std::string() : line;
}

}  // namespace

Outcome<std::string> askForKey(const std::string& whose) {
  const QuietTerminal terminal;
  if (terminal.isQuiet()) std::fputs(("Key for " + terminalLine(whose) + ": ").c_str(), stderr);
  std::string key = readLine(terminal.isQuiet());
  if (terminal.isQuiet()) std::fputs("\n", stderr);
  if (key.size() > kLongestKey) return failure("the key for " + whose, "", "it is too long");
  if (terminalLine(key) != key) return failure("the key for " + whose, "", "it holds a control character");
  if (!key.empty()) return key;
  return failure("the key for " + whose, "",
                 "none was given; type it, write it as one line to standard input, or use --key-command");
}

}  // namespace linewatch::app

#include "app/key_prompt.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string_view>

#include <termios.h>
#include <unistd.h>

#include "app/terminal_text.h"
#include "app/text_table.h"
#include "machine/terminal_line.h"
#include "shared/failure.h"

namespace linewatch::app {

namespace {

/// Bytes.
constexpr std::size_t kLongestKey = 8192;

constexpr char kInterrupt = 3;   // Control-C
constexpr char kEndOfInput = 4;  // Control-D
constexpr char kEraseLine = 21;  // Control-U

constexpr std::array kSignalsThatEnd = {SIGTERM, SIGINT, SIGHUP, SIGQUIT};

/// The settings of the terminal before the echo was turned off. Only signal handlers read it, and they are
/// set after it.
termios terminalBefore;

/// Drops what was typed, so that no part of the key reaches the shell. Does not wait for the output, which
/// the user may have stopped. Safe in a signal handler.
void showTyping() {
  ::tcflush(STDIN_FILENO, TCIFLUSH);
  ::tcsetattr(STDIN_FILENO, TCSANOW, &terminalBefore);
}

/// Ends the program as the signal would have, after turning on the echo. Further signals wait meanwhile.
void endWithEcho(int signal) {
  showTyping();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

/// Turns off the echo of the terminal on standard input while this object lives. Keys such as Control-C are
/// read as characters, and a signal that ends the program turns on the echo first. Does nothing without a
/// terminal.
class QuietTerminal {
 public:
  QuietTerminal() {
    if (::tcgetattr(STDIN_FILENO, &terminalBefore) != 0) return;
    setHandlers();
    termios quiet = terminalBefore;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG);
    quiet.c_cc[VMIN] = 1;
    quiet.c_cc[VTIME] = 0;
    isQuiet_ = ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
    if (!isQuiet_) resetHandlers();
  }
  QuietTerminal(const QuietTerminal&) = delete;
  QuietTerminal& operator=(const QuietTerminal&) = delete;
  ~QuietTerminal() {
    if (!isQuiet_) return;
    showTyping();
    resetHandlers();
  }

  bool isQuiet() const { return isQuiet_; }

 private:
  /// A signal that the program ignores, e.g. under nohup, stays ignored.
  void setHandlers() {
    struct sigaction handling {};
    handling.sa_handler = endWithEcho;
    for (const int signal : kSignalsThatEnd) ::sigaddset(&handling.sa_mask, signal);
    for (std::size_t i = 0; i < kSignalsThatEnd.size(); ++i) {
      ::sigaction(kSignalsThatEnd[i], nullptr, &handlingBefore_[i]);
      if (handlingBefore_[i].sa_handler != SIG_IGN) ::sigaction(kSignalsThatEnd[i], &handling, nullptr);
    }
  }
  void resetHandlers() {
    for (std::size_t i = 0; i < kSignalsThatEnd.size(); ++i)
      ::sigaction(kSignalsThatEnd[i], &handlingBefore_[i], nullptr);
  }

  std::array<struct sigaction, kSignalsThatEnd.size()> handlingBefore_{};
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

/// Empty at the end of the input; absent after Control-C.
std::optional<std::string> readLine(bool isTerminal) {
  std::string line;
  while (const auto character = nextCharacter()) {
    if (*character == '\n' || *character == '\r' || line.size() > kLongestKey) return line;
    if (isTerminal && *character == kInterrupt) return std::nullopt;
    if (isTerminal && *character == kEndOfInput) return "";
    if (isTerminal && (*character == '\b' || *character == '\x7F')) {
      if (!line.empty()) line.pop_back();
    } else if (isTerminal && *character == kEraseLine) {
      line.clear();
    } else {
      line += *character;
    }
  }
  return isTerminal ? std::string() : line;
}

std::string promptText(const RiderTexts& texts, KeyUse use, const std::string& feed) {
  constexpr std::array<std::string_view, 3> kTexts = {"KeyFor", "KeyForTimetable", "KeyForAlerts"};
  std::string prompt =
      paragraph(texts(kTexts.at(static_cast<std::size_t>(use)), {feed}), 0, TerminalStyle::ofStandardError());
  prompt.back() = ' ';
  return prompt;
}

}  // namespace

Outcome<std::string> askForKey(const RiderTexts& texts, KeyUse use, const std::string& feed) {
  const QuietTerminal terminal;
  if (terminal.isQuiet()) std::fputs(promptText(texts, use, feed).c_str(), stderr);
  const std::optional<std::string> typed = readLine(terminal.isQuiet());
  if (terminal.isQuiet()) std::fputs("\n", stderr);
  if (!typed) return failure(FailureCode::cancelled, feed, "", "cancelled");
  const std::string& key = *typed;
  if (key.empty())
    return failure(FailureCode::invalid, "", "", texts("KeyMissing", {feed, std::string("--key-command")}));
  if (key.size() > kLongestKey || terminalLine(key) != key)
    return failure(FailureCode::invalid, "", "", texts("KeyUnusable", {feed}));
  return key;
}

}  // namespace linewatch::app

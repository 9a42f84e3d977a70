#pragma once

#include <string>
#include <vector>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace linewatch::app {

/// The built program on a terminal of 80 columns.
class TerminalProgram {
 public:
  explicit TerminalProgram(std::vector<std::string> words) {
    // Made before the fork, because another thread of the test may hold the allocator's lock.
    words.insert(words.begin(), LINEWATCH_PROGRAM);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
    process_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
    if (process_ == 0) execute(arguments);
  }
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;
  ~TerminalProgram() { ::close(terminal_); }

  void type(const std::string& keys) { (void)!::write(terminal_, keys.data(), keys.size()); }
  /// Waits until the terminal has shown the text; false when the program ends before.
  bool shows(const std::string& text) {
    while (shown_.find(text) == std::string::npos) {
      if (!readByte()) return false;
    }
    return true;
  }
  /// Waits for the end and returns the exit status; negative after a signal.
  int end() {
    while (readByte()) continue;
    int status = 0;
    ::waitpid(process_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// Everything that the terminal has shown so far.
  const std::string& shown() const { return shown_; }

 private:
  [[noreturn]] static void execute(const std::vector<char*>& arguments) {
    ::execv(LINEWATCH_PROGRAM, arguments.data());
    ::_exit(127);
  }
  bool readByte() {
    char byte = 0;
    if (::read(terminal_, &byte, 1) != 1) return false;
    shown_ += byte;
    return true;
  }

  pid_t process_ = -1;
  int terminal_ = -1;
  std::string shown_;
};

}  // namespace linewatch::app

#include "machine/key_command.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "shared/failure.h"
#include "shared/shell_words.h"

namespace linewatch {

namespace {

using Clock = std::chrono::steady_clock;

/// In bytes. Longer output is no key.
constexpr std::size_t kLongestOutput = 65536;
/// The time between two checks for a requested stop.
constexpr std::chrono::milliseconds kStopPause{50};

std::string systemMessage(int error) { return std::generic_category().message(error); }

/// A program whose standard output is read through a pipe. It leads a process group of its own.
class OutputOfProgram {
 public:
  OutputOfProgram() = default;
  OutputOfProgram(const OutputOfProgram&) = delete;
  OutputOfProgram& operator=(const OutputOfProgram&) = delete;
  ~OutputOfProgram();

  /// The system's error; 0 if the program runs.
  int start(std::vector<std::string> words);
  /// Waits for more output; false at its end.
  bool read(std::chrono::milliseconds wait);
  /// The exit status; absent while the program runs.
  std::optional<int> status();
  const std::string& output() const { return output_; }

 private:
  int spawn(std::vector<std::string>& words, int writeEnd);

  int readEnd_ = -1;
  /// 0 before the program's start and after its end.
  pid_t process_ = 0;
  std::string output_;
};

OutputOfProgram::~OutputOfProgram() {
  if (readEnd_ >= 0) ::close(readEnd_);
  if (process_ == 0) return;
  ::kill(-process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

int OutputOfProgram::start(std::vector<std::string> words) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return errno;
  readEnd_ = ends[0];
  const int error = spawn(words, ends[1]);
  ::close(ends[1]);
  return error;
}

int OutputOfProgram::spawn(std::vector<std::string>& words, int writeEnd) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, writeEnd, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  const int error =
      posix_spawnp(&process_, arguments.front(), &actions, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) process_ = 0;
  return error;
}

bool OutputOfProgram::read(std::chrono::milliseconds wait) {
  pollfd end{.fd = readEnd_, .events = POLLIN, .revents = 0};
  if (::poll(&end, 1, static_cast<int>(wait.count())) <= 0) return true;
  std::array<char, 4096> block;
  const ssize_t count = ::read(readEnd_, block.data(), block.size());
  if (count > 0) output_.append(block.data(), static_cast<std::size_t>(count));
  return count > 0 || (count < 0 && errno == EINTR);
}

std::optional<int> OutputOfProgram::status() {
  int status = 0;
  if (::waitpid(process_, &status, WNOHANG) == 0) return std::nullopt;
  process_ = 0;
  return status;
}

/// The reason why a command that has ended gives no key; empty if it gives one.
std::string complaintOf(int status, const std::string& line) {
  if (WIFSIGNALED(status)) return "it was ended by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0)
    return "it ended with status " + std::to_string(WEXITSTATUS(status)) + "; run it yourself to see why";
  return line.empty() ? "it printed no key" : "";
}

std::string firstLine(const std::string& output) {
  std::string line = output.substr(0, output.find('\n'));
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

/// Waits for the end of the output and of the program.
Outcome<std::string> keyOf(OutputOfProgram& program, const std::stop_token& stop,
                           Clock::time_point deadline) {
  bool isOpen = true;
  for (;;) {
    if (stop.stop_requested()) return failure(FailureCode::cancelled, "", "", "it is no longer wanted");
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return failure(FailureCode::timedOut, "", "", "it took too long");
    const auto wait = std::min(left, kStopPause);
    if (program.output().size() > kLongestOutput)
      return failure(FailureCode::tooLarge, "", "", "it printed more than a key");
    if (isOpen) {
      isOpen = program.read(wait);
      continue;
    }
    if (const auto status = program.status()) {
      std::string line = firstLine(program.output());
      const std::string complaint = complaintOf(*status, line);
      return complaint.empty() ? Outcome<std::string>(std::move(line))
                               : failure(FailureCode::invalid, "", "", complaint);
    }
    ::poll(nullptr, 0, 1);
  }
}

}  // namespace

Outcome<std::string> keyFromCommand(const std::string& command, const std::stop_token& stop,
                                    std::chrono::milliseconds timeout) {
  const auto words = shellWords(command);
  if (!words || words->empty())
    return failure(FailureCode::invalid, "the key command", "",
                   "it is empty, or a quote in it is not closed");
  const std::string name = "the key command \"" + words->front() + "\"";
  OutputOfProgram program;
  if (const int error = program.start(*words); error != 0)
    return failure(FailureCode::notFound, name, "", systemMessage(error));
  auto key = keyOf(program, stop, Clock::now() + timeout);
  return key ? key : within(name, key.error());
}

}  // namespace linewatch

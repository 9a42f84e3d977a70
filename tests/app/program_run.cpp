#include "app/program_run.h"

#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "temporary_folder.h"

namespace linewatch::app {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

ProgramRun runProgram(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
                      const std::string& input) {
  const TemporaryFolder folder;
  const std::string output = folder / "out";
  const std::string errors = folder / "err";
  const std::string inputFile = folder.write("in", input);
  std::vector<std::string> words{LINEWATCH_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables{"TZ=UTC", "LANG=en_US.UTF-8", "HOME=" + (folder / "home")};
  variables.insert(variables.end(), environment.begin(), environment.end());

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, inputFile.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT, 0600);
  pid_t process = 0;
  const int failed = posix_spawn(&process, LINEWATCH_PROGRAM, &actions, nullptr, pointersTo(words).data(),
                                 pointersTo(variables).data());
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error("cannot start " LINEWATCH_PROGRAM);
  int status = 0;
  waitpid(process, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), textIn(output), textIn(errors)};
}

}  // namespace linewatch::app

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/program_run.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::HasSubstr;

/// The panel in a process of its own, without a display. It logs every step to standard error.
class PanelProcess {
 public:
  explicit PanelProcess(const std::string& stateFolder, const std::vector<std::string>& options = {}) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    std::vector<std::string> words{LINEWATCH_PROGRAM, "-v", "--state-dir", stateFolder, "panel", "--example"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::string variables[] = {"QT_QPA_PLATFORM=offscreen", "LANG=en_US.UTF-8", "HOME=" + stateFolder};
    char* environment[] = {variables[0].data(), variables[1].data(), variables[2].data(), nullptr};
    if (posix_spawn(&process_, LINEWATCH_PROGRAM, &actions, nullptr, arguments.data(), environment) != 0)
      std::abort();
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    said_ = fdopen(ends[0], "r");
  }
  ~PanelProcess() {
    if (process_ > 0) end(SIGKILL);
    std::fclose(said_);
  }
  PanelProcess(const PanelProcess&) = delete;
  PanelProcess& operator=(const PanelProcess&) = delete;

  /// Waits for a log line with these words; false when the process ends without one.
  bool says(const std::string& words) {
    char line[4096];
    while (std::fgets(line, sizeof line, said_)) {
      if (std::string(line).find(words) != std::string::npos) return true;
    }
    return false;
  }
  /// Sends the signal and returns the exit status, or 128 and the number of the signal that ended the
  /// process.
  int end(int signal) {
    kill(process_, signal);
    return wait();
  }
  /// The exit status of a process that ends by itself.
  int wait() {
    int status = 0;
    waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  pid_t process_ = -1;
  std::FILE* said_ = nullptr;
};

// Logged after the list has been written to the file.
constexpr const char* kSaves = "The preference Rova.LineWatch.savedUIData is saved";
constexpr const char* kLoads = "View model loaded";
constexpr const char* kFetches = "Received 7 line items";

class PanelProcessTest : public testing::Test {
 protected:
  std::string analytics() { return runProgram({"--state-dir", folder_ / "state", "analytics"}).output; }

  TemporaryFolder folder_;
};

TEST_F(PanelProcessTest, RestoresItsListAfterItWasKilled) {
  PanelProcess first(folder_ / "state");
  ASSERT_TRUE(first.says(kSaves));
  EXPECT_EQ(first.end(SIGKILL), 128 + SIGKILL);
  PanelProcess second(folder_ / "state");
  ASSERT_TRUE(second.says(kLoads));
  EXPECT_EQ(second.end(SIGTERM), 0) << "an orderly end, as when the desktop session ends";
  EXPECT_THAT(analytics(), HasSubstr("shown for"));
}

TEST_F(PanelProcessTest, TwoPanelsShareAStateFolder) {
  PanelProcess first(folder_ / "state");
  PanelProcess second(folder_ / "state");
  // The second panel may find the saved list of the first one, and then has nothing to save.
  ASSERT_TRUE(first.says(kFetches));
  ASSERT_TRUE(second.says(kFetches));
  EXPECT_EQ(first.end(SIGINT), 0);
  EXPECT_EQ(second.end(SIGTERM), 0);
  EXPECT_TRUE(PanelProcess(folder_ / "state").says(kLoads));
  const std::string recorded = analytics();
  EXPECT_NE(recorded.find("shown for"), recorded.rfind("shown for")) << recorded;
}

TEST_F(PanelProcessTest, RecordsNothingWhenTurnedOff) {
  EXPECT_EQ(runProgram({"--state-dir", folder_ / "state", "analytics", "off"}).output, "Recording is off.\n");
  PanelProcess panel(folder_ / "state");
  ASSERT_TRUE(panel.says(kSaves));
  EXPECT_EQ(panel.end(SIGTERM), 0);
  EXPECT_EQ(analytics(), "Nothing has been recorded.\nRecording is off.\n");
  EXPECT_THAT(runProgram({"--state-dir", folder_ / "state", "analytics", "on"}).output, HasSubstr("on"));
  PanelProcess another(folder_ / "state");
  ASSERT_TRUE(another.says(kLoads));
  another.end(SIGTERM);
  const auto run = runProgram({"--state-dir", folder_ / "state", "analytics", "--json"});
  EXPECT_THAT(run.output, HasSubstr(R"("endState": 2)")) << run.errors;
  EXPECT_EQ(runProgram({"--state-dir", folder_ / "state", "analytics", "clear"}).status, 0);
  EXPECT_THAT(analytics(), HasSubstr("Nothing has been recorded.\n"));
}

TEST_F(PanelProcessTest, LeavesARecordingAlsoWhenItIsKilled) {
  for (const int signal : {SIGKILL, SIGTERM}) {
    const std::string file = folder_ / ("hour" + std::to_string(signal) + ".json");
    PanelProcess panel(folder_ / "state", {"--record", file});
    ASSERT_TRUE(panel.says("The recording is in " + file));
    panel.end(signal);
    const auto replayed = runProgram({"simulate", file});
    EXPECT_EQ(replayed.status, 0) << replayed.errors;
    EXPECT_THAT(replayed.output, HasSubstr("Signal failure at Zentralbahnhof"));
  }
}

TEST_F(PanelProcessTest, RefusesAtOnceToRecordIntoAFileThatCannotBeWritten) {
  PanelProcess panel(folder_ / "state", {"--record", folder_ / "none/hour.json"});
  EXPECT_TRUE(panel.says("none/hour.json: No such file or directory"));
  EXPECT_EQ(panel.wait(), 2);
}

TEST_F(PanelProcessTest, PrintsTheListWithoutADisplay) {
  const auto run = runProgram({"--state-dir", folder_ / "state"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.output, HasSubstr("Advisories"));
  EXPECT_EQ(run.errors, "linewatch: there is no display for the panel, so its list is printed\n");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "state"));
  const auto recording = runProgram({"--state-dir", folder_ / "state", "panel", "--record", "hour.json"});
  EXPECT_EQ(recording.status, 2);
  EXPECT_EQ(recording.errors,
            "linewatch: hour.json: nothing is recorded, because there is no display for the panel\n");
}

}  // namespace
}  // namespace linewatch::app

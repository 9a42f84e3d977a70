#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/encoded_alerts.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// A command, usually with --watch, in a process of its own, whose output the test reads line by line.
class WatchProcess {
 public:
  explicit WatchProcess(std::vector<std::string> words, bool watches = true) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    words.insert(words.begin(), LINEWATCH_PROGRAM);
    if (watches) words.emplace_back("--watch");
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::string variables[] = {"TZ=UTC", "LANG=en_US.UTF-8", "HOME=/nonexistent",
                               "QT_QPA_PLATFORM=offscreen"};
    char* environment[] = {variables[0].data(), variables[1].data(), variables[2].data(), variables[3].data(),
                           nullptr};
    if (posix_spawn(&process_, LINEWATCH_PROGRAM, &actions, nullptr, arguments.data(), environment) != 0)
      std::abort();
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    output_ = fdopen(ends[0], "r");
  }
  ~WatchProcess() {
    closeReader();
    if (process_ > 0) end(SIGKILL);
  }
  WatchProcess(const WatchProcess&) = delete;
  WatchProcess& operator=(const WatchProcess&) = delete;

  /// Empty at the end of the output.
  std::string line() {
    char text[4096] = "";
    return std::fgets(text, sizeof text, output_) ? text : "";
  }
  std::string name() const { return textIn("/proc/" + std::to_string(process_) + "/comm"); }
  void send(int signal) const { kill(process_, signal); }
  void closeReader() {
    if (output_) std::fclose(std::exchange(output_, nullptr));
  }
  /// Sends the signal, or none, and waits for the end. Gives the exit status, or 128 and the number of the
  /// signal that ended the process.
  int end(int signal = 0) {
    if (signal != 0) send(signal);
    int status = 0;
    waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  pid_t process_ = -1;
  std::FILE* output_ = nullptr;
};

class WatchProcessTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_.write("gtfs/routes.txt", "route_id,route_short_name,route_type\nr1,1,3\nr2,2,3\n");
    putAlerts("");
  }
  /// Replaces the feed, as a reader must never find half of it.
  void putAlerts(const std::string& entities) {
    folder_.write("new.pb", alertsFeed(entities));
    std::rename((folder_ / "new.pb").c_str(), (folder_ / "alerts.pb").c_str());
  }
  std::vector<std::string> given(const std::vector<std::string>& more) const {
    std::vector<std::string> words{
        "--gtfs", folder_ / "gtfs", "--alerts", folder_ / "alerts.pb", "--favorite",
        "r1",     "--favorite",     "r2"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  TemporaryFolder folder_;
};

TEST_F(WatchProcessTest, StatusPrintsALineForEachChange) {
  WatchProcess status(given({"status"}));
  EXPECT_EQ(status.line(), "Good Service\n");
  // The first answer is the same and prints nothing.
  status.send(SIGUSR1);
  putAlerts(alertEntity("a", "r1", "Strike"));
  status.send(SIGUSR1);
  EXPECT_EQ(status.line(), "1: Strike\n");
  putAlerts(alertEntity("a", "r1", "Strike") + alertEntity("b", "r2", "Fog"));
  status.send(SIGUSR1);
  EXPECT_EQ(status.line(), "2 lines with advisories\n");
  EXPECT_EQ(status.end(SIGTERM), 0);
}

TEST_F(WatchProcessTest, TheSignalForThemEndsNoOtherCommand) {
  WatchProcess status(given({"status"}));
  EXPECT_EQ(status.line(), "Good Service\n");
  EXPECT_EQ(status.name(), "linewatch-watch\n");
  // A command that reads its feed from a pipe is known to run.
  const std::string alerts = folder_ / "alerts.pb";
  std::remove(alerts.c_str());
  mkfifo(alerts.c_str(), 0600);
  WatchProcess show(given({"show"}), /*watches=*/false);
  const int writer = open(alerts.c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(show.name(), "linewatch\n");
  show.send(SIGUSR1);
  const std::string feed = alertsFeed("");
  EXPECT_EQ(write(writer, feed.data(), feed.size()), static_cast<ssize_t>(feed.size()));
  close(writer);
  EXPECT_THAT(show.line(), HasSubstr("Good Service"));
  EXPECT_EQ(show.end(), 0);
}

TEST_F(WatchProcessTest, EndsWithItsReaderAlthoughItHasNothingToPrint) {
  for (const auto& words : {given({"status", "--format", "waybar"}), given({"show"})}) {
    WatchProcess watch(words);
    EXPECT_NE(watch.line(), "");
    watch.closeReader();
    EXPECT_EQ(watch.end(), 0) << words.back();
  }
  WatchProcess interrupted(given({"show", "--json"}));
  EXPECT_THAT(interrupted.line(), StartsWith("{"));
  EXPECT_EQ(interrupted.end(SIGINT), 0);
}

TEST_F(WatchProcessTest, RenderReplacesTheFileWhenTheRowsChange) {
  const std::string picture = folder_ / "picture/out.svg";
  folder_.write("picture/out.svg", "before");
  const int notices = inotify_init1(IN_CLOEXEC);
  inotify_add_watch(notices, (folder_ / "picture").c_str(), IN_MOVED_TO);
  const auto waitForFile = [notices] {
    alignas(inotify_event) char event[4096];
    return read(notices, event, sizeof event) > 0;
  };
  WatchProcess render(given({"render", "-o", picture}));
  ASSERT_TRUE(waitForFile());
  const std::string first = textIn(picture);
  EXPECT_THAT(first, HasSubstr("<svg"));
  putAlerts(alertEntity("a", "r1", "Strike"));
  render.send(SIGUSR1);
  ASSERT_TRUE(waitForFile());
  EXPECT_THAT(textIn(picture), HasSubstr("<svg"));
  EXPECT_NE(textIn(picture), first);
  EXPECT_EQ(render.end(SIGTERM), 0);
  close(notices);
}

}  // namespace
}  // namespace linewatch::app

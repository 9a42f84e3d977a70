#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/program_run.h"
#include "desktop/bus_name.h"
#include "shared/file_contents.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// Runs the program with saved state of its own, at ten o'clock in the made-up city.
class NotifyCommandTest : public testing::Test {
 protected:
  ProgramRun run(const std::vector<std::string>& more) const {
    std::vector<std::string> words{"--state-dir", folder_ / "state", "--locale",
                                   "en",          "--now",           "2026-11-24T10:00:00Z"};
    words.insert(words.end(), more.begin(), more.end());
    return runProgram(words, {"XDG_CONFIG_HOME=" + (folder_ / "config"), "TZ=UTC"});
  }
  /// The output of a run that succeeds.
  std::string output(const std::vector<std::string>& more) const {
    const ProgramRun done = run(more);
    EXPECT_EQ(done.status, 0) << done.errors;
    return done.output;
  }

  TemporaryFolder folder_;
};

TEST_F(NotifyCommandTest, ListsAndChangesNotifications) {
  EXPECT_THAT(output({"notify"}), HasSubstr("linewatch notify LINE on"));
  EXPECT_EQ(output({"notify", "M1"}), "No notifications for M1\n");
  EXPECT_EQ(output({"notify", "M1", "on"}), "Notifications for M1: always\n");
  EXPECT_EQ(output({"notify", "M1", "weekdays", "7-9,", "17 to 19", "--from", "severe"}),
            "Notifications for M1: weekdays 7 to 9, 17 to 19 --from severe\n");
  EXPECT_EQ(output({"notify", "T3", "--from", "warning"}), "Notifications for 3: always --from warning\n");
  EXPECT_THAT(output({"mute", "M1", "2h"}), AllOf(HasSubstr("M1 is muted until"), HasSubstr("12:00")));
  EXPECT_THAT(output({"notify"}), AllOf(HasSubstr("muted until"), HasSubstr("3   always --from warning")));
  EXPECT_THAT(output({"notify", "M1", "on"}), AllOf(HasSubstr("--from severe\nM1 is muted until"),
                                                    HasSubstr("To unmute: linewatch mute M1 off\n")));
  EXPECT_EQ(output({"mute", "M1", "off"}), "M1 is not muted\n");
  EXPECT_THAT(output({"notify"}), Not(HasSubstr("muted")));
  EXPECT_EQ(output({"notify", "M1", "off"}), "No notifications for M1\n");
  EXPECT_THAT(output({"notify"}), Not(HasSubstr("M1")));
  output({"mute", "M1", "2h"});
  EXPECT_THAT(output({"notify"}), HasSubstr("M1  off"));
  output({"notify", "T3", "off"});
  EXPECT_THAT(output({"notify"}), AllOf(HasSubstr("No notifications"), HasSubstr("muted until")));
}

TEST_F(NotifyCommandTest, RefusesWhatItDoesNotUnderstandInOneLine) {
  const struct {
    std::vector<std::string> words;
    std::string complaint;
  } kRuns[] = {
      {{"notify", "Nowhere"},
       "linewatch: line \"Nowhere\": it is no favourite; linewatch favorites lists them\n"},
      {{"notify", "M1", "blursday"}, "linewatch: \"blursday\" is neither a day nor a time from 0 to 24\n"},
      {{"mute", "M1", "2y"}, "linewatch: mute: \"2y\" is neither off nor a time from 1m to 30d such as 2h\n"},
      {{"mute", "fire"},
       "linewatch: \"fire\": neither a favourite nor an incident with notifications has this name\n"},
      {{"settings", "quiet-hours", "22 to"},
       "linewatch: quiet-hours: \"22 to\" needs a time from 0 to 24, such as \"7 to 9:30\"\n"}};
  for (const auto& [words, complaint] : kRuns) {
    const ProgramRun refused = run(words);
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors, complaint);
  }
  EXPECT_THAT(output({"notify"}), HasSubstr("No notifications"));
}

TEST_F(NotifyCommandTest, AutostartWritesAndRemovesItsOwnEntryOnly) {
  const std::filesystem::path entries = folder_ / "config/autostart";
  folder_.write("config/autostart/org.linewatch.LineWatch.desktop", "X-LineWatch-Setting=autostart");
  output({"settings", "autostart", "on"});
  const std::string name = desktop::busNameFor(folder_ / "state", processEnvironment) + ".desktop";
  EXPECT_THAT(*contentsOf(entries / name),
              AllOf(HasSubstr("Exec=\""), HasSubstr("linewatch\" panel --hidden --state-dir \"")));
  output({"settings", "autostart", "off"});
  EXPECT_FALSE(std::filesystem::exists(entries / name));
  EXPECT_TRUE(std::filesystem::exists(entries / "org.linewatch.LineWatch.desktop")) << "of other saved state";
  folder_.write("config/autostart/" + name, "the user's own");
  output({"settings", "autostart", "on"});
  EXPECT_THAT(run({"settings", "autostart", "off"}).errors, HasSubstr("LineWatch has not written this file"));
  EXPECT_EQ(*contentsOf(entries / name), "the user's own");
}

TEST_F(NotifyCommandTest, AutostartTellsWhatTheDesktopHasChosen) {
  const std::string entry =
      "config/autostart/" + desktop::busNameFor(folder_ / "state", processEnvironment) + ".desktop";
  output({"settings", "autostart", "on"});
  const std::string written = *contentsOf(folder_ / entry);
  EXPECT_EQ(output({"settings", "autostart"}), "true\n");
  std::string disabled = written;
  disabled.replace(disabled.find("enabled=true"), 12, "enabled=false");
  for (const std::string& contents : {written + "Hidden=true\n", disabled}) {
    folder_.write(entry, contents);
    EXPECT_EQ(output({"settings", "autostart"}), "false\n");
    EXPECT_THAT(output({"settings"}), HasSubstr("the desktop’s choice"));
    EXPECT_EQ(*contentsOf(folder_ / entry), contents);
    output({"settings", "autostart", "on"});
    EXPECT_EQ(*contentsOf(folder_ / entry), written);
  }
  std::filesystem::remove(folder_ / entry);
  EXPECT_EQ(output({"settings", "autostart"}), "false\n");
}

}  // namespace
}  // namespace linewatch::app

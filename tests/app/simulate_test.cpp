#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/program_run.h"
#include "temporary_folder.h"

namespace linewatch::app {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// A strike that begins after 10 minutes, and a transcript of it.
class SimulateTest : public testing::Test {
 protected:
  void SetUp() override {
    writeFile(scenario_, R"({
      "favorites": [{"line": "U1"}], "lines": {"U1": {"incidents": ["strike"]}},
      "incidents": {"strike": {"title": "Strike", "start": 600}},
      "steps": [{"do": "load"}, {"do": "appear"}, {"do": "advance", "seconds": 900}]})");
  }
  ProgramRun simulate(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "simulate");
    return runProgram(arguments);
  }

  TemporaryFolder folder_;
  std::string scenario_ = (folder_.path() / "scenario.json").string();
};

TEST_F(SimulateTest, ShowsTheWidgetAtAMoment) {
  const ProgramRun before = simulate({scenario_, "--show", "--until", "599.5"});
  EXPECT_THAT(before.output, StartsWith("At 599.5 s, after 3 steps, compact:\n"));
  EXPECT_THAT(before.output, HasSubstr("LineWatch_GoodService"));
  const ProgramRun after = simulate({scenario_, "--show", "--until", "600"});
  EXPECT_THAT(after.output, HasSubstr("Strike"));
  EXPECT_EQ(simulate({scenario_, "--show", "--step", "0"}).output.substr(0, 24), "At 0 s, after 1 step, co");
}

TEST_F(SimulateTest, AnEndThatCannotBeIsOneClearLine) {
  const std::string picture = folder_ / "transcript.png";
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{scenario_, "--until", "-1"},
       "linewatch: --until: \"-1\" is not a number from 0 (the start) to 1e12 (linewatch simulate --help "
       "says "
       "more)\n"},
      {{scenario_, "--until", "inf"}, "\"inf\" is not a number"},
      {{scenario_, "--step", "x"}, "--step: \"x\" is not a whole number"},
      {{scenario_, "-o", picture}, "transcript.png: a transcript is no picture; --show draws one\n"}};
  for (const auto& [arguments, error] : cases) {
    const ProgramRun run = simulate(arguments);
    EXPECT_EQ(run.status, 2) << error;
    EXPECT_THAT(run.errors, HasSubstr(error));
  }
  EXPECT_FALSE(std::filesystem::exists(picture));
}

TEST_F(SimulateTest, DrawsTheWidgetAtAMoment) {
  const auto picture = folder_.path() / "moment.png";
  const ProgramRun run = simulate({scenario_, "--show", "--until", "700", "-o", picture.string()});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_GT(std::filesystem::file_size(picture), 1000U);
}

TEST_F(SimulateTest, TellsWhereTwoTranscriptsPart) {
  const auto write = [this](const char* name, const char* until) {
    const std::string file = (folder_.path() / name).string();
    EXPECT_EQ(simulate({scenario_, "--until", until, "-o", file}).status, 0);
    return file;
  };
  const std::string whole = write("whole.jsonl", "900"), half = write("half.jsonl", "300");
  const ProgramRun same = simulate({"--diff", whole, whole});
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(same.output, "The transcripts are the same.\n");
  const ProgramRun different = simulate({"--diff", half, whole});
  EXPECT_EQ(different.status, 1);
  EXPECT_THAT(different.output,
              HasSubstr(half + " ends there. " + whole + " goes on with timerFired at 600 s."));
  EXPECT_EQ(simulate({"--diff", half, scenario_}).status, 2);
  EXPECT_EQ(simulate({}).status, 2);
}

}  // namespace
}  // namespace linewatch::app

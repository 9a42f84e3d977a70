#include "simulation/scenario/scenario_run.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "list/list_dictionary_form.h"
#include "shared/failure.h"
#include "simulation/scenario/scenario.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/scenario_writing.h"
#include "wire/json_text.h"

namespace linewatch::simulation {
namespace {

using testing::ElementsAre;

/// A widget that appears; its look-ups wait for an answer.
std::string waiting(const std::string& world, const std::string& steps) {
  return R"({"favorites": [{"line": "U1"}], "service": {"delay": null}, )" + world +
         R"(, "steps": [{"do": "load"}, {"do": "appear"}, )" + steps + "]}";
}

const std::string kTwoLines =
    R"("lines": {"U1": {}, "U2": {"incidents": ["i"]}}, "incidents": {"i": {"title": "Works"}})";

ScenarioRun runOf(const std::string& text, const RunEnd& end = {}) {
  auto run = runScenarioUntil(text, end);
  EXPECT_TRUE(run) << run.error().description();
  return run ? *std::move(run) : ScenarioRun();
}

std::vector<std::string> eventsOf(const ScenarioRun& run) {
  std::vector<std::string> events;
  for (const std::string& line : run.transcript) {
    const Json event = Json::parse(line);
    if (event["event"] != "log")
      events.push_back(event["event"].get<std::string>() + "@" + event["t"].dump());
  }
  return events;
}

TEST(ScenarioRunTest, ALookupWaitsForItsAnswer) {
  const std::string steps =
      R"({"do": "advance", "seconds": 7}, {"do": "answer"}, {"do": "advance", "seconds": 1})";
  const ScenarioRun run = runOf(waiting(kTwoLines, steps));
  EXPECT_THAT(eventsOf(run), testing::IsSupersetOf({"lookup@0", "reload@7"}));
  EXPECT_EQ(run.time, Seconds(8));
  const auto early = runScenario(waiting(kTwoLines, R"({"do": "answer"})"));
  ASSERT_FALSE(early);
  EXPECT_EQ(sentenceOf(early.error()), "steps[2]: no look-up waits for an answer");
}

TEST(ScenarioRunTest, TheServiceAnswersTheLinesThatItIsGivenInTheirOrder) {
  const std::string steps =
      R"({"do": "advance", "seconds": 1}, {"do": "set", "service": {"lines": ["U2"]}}, {"do": "answer"})";
  const ScenarioRun run = runOf(waiting(kTwoLines, steps));
  ASSERT_TRUE(run.list);
  EXPECT_THAT(jsonText(dictionaryForm(*run.list)), testing::HasSubstr("Works"));
  const auto unknown = runScenario(waiting(kTwoLines, R"({"do": "set", "service": {"lines": ["U3"]}})"));
  ASSERT_FALSE(unknown);
  EXPECT_EQ(sentenceOf(unknown.error()), "steps[2].service.lines[0]: there is no line \"U3\"");
}

TEST(ScenarioRunTest, ARunEndsAtATimeOrAfterAStep) {
  const std::string text = waiting(
      kTwoLines, R"({"do": "advance", "seconds": 10}, {"do": "answer"}, {"do": "advance", "seconds": 10})");
  struct Row {
    RunEnd end;
    double time;
    std::size_t steps;
    bool isAnswered;
  };
  const auto isAnswered = [](const ScenarioRun& run) {
    return std::ranges::any_of(
        run.transcript, [](const std::string& line) { return line.find("\"reload\"") != std::string::npos; });
  };
  for (const Row& row : {Row{{.until = Seconds(4)}, 4, 3, false}, Row{{.until = Seconds(10)}, 10, 5, true},
                         Row{{.until = Seconds(60)}, 20, 5, true}, Row{{.step = 2}, 10, 3, false},
                         Row{{.step = 3}, 10, 4, true}, Row{{.step = 99}, 20, 5, true}}) {
    const ScenarioRun run = runOf(text, row.end);
    EXPECT_EQ(run.time, Seconds(row.time));
    EXPECT_EQ(run.steps, row.steps);
    EXPECT_EQ(isAnswered(run), row.isAnswered);
  }
}

TEST(ScenarioRunTest, FavoritesThatCannotBeReadAreAnError) {
  const std::string world = kTwoLines + R"(, "favoritesError": {"domain": "Disk", "code": 5})";
  const ScenarioRun run = runOf(waiting(world, R"({"do": "advance", "seconds": 1})"));
  ASSERT_TRUE(run.list);
  EXPECT_THAT(eventsOf(run), testing::Not(testing::Contains("lookup@0")));
}

TEST(ScenarioRunTest, NewLimitsReachTheWidgetAtOnce) {
  const std::string steps =
      R"({"do": "limits", "compact": [300, 50], "expanded": [300, 150]}, {"do": "snapshot"})";
  const ScenarioRun run = runOf(waiting(kTwoLines, steps));
  const Json snapshot = Json::parse(run.transcript.back());
  EXPECT_EQ(snapshot["rowHeight"], 50);
  EXPECT_EQ(snapshot["maxNumberOfRows"], 3);
}

TEST(ScenarioRunTest, TheStartOfTheClockIsGivenOnce) {
  const auto scenario = readScenario(R"({"start": 1800000000})");
  ASSERT_TRUE(scenario);
  EXPECT_EQ(scenario->world.start, Date(Seconds(1800000000)));
  const auto changed = readScenario(R"({"steps": [{"do": "set", "start": 5}]})");
  ASSERT_FALSE(changed);
  EXPECT_EQ(sentenceOf(changed.error()), "steps[0].start: cannot change");
}

TEST(ScenarioWritingTest, WhatIsWrittenReadsAsTheSameWorld) {
  const std::string text = R"({
    "start": 1800000000, "layoutDirection": "rtl", "textSize": "AX3", "random": [1, 2], "diagnosis": 3,
    "host": {"compact": [300, 100.5], "activeMode": "expanded"}, "opens": false, "capabilities": {"wapi": true},
    "favorites": [{"line": "A"}, {"kind": "place", "name": "Home"}], "preferences": {"a": [1, {"b": 0.5}]},
    "systems": {"M": {"artwork": {"iconType": 7}}},
    "lines": {"A": {"system": "M", "incidents": ["i"], "lineColorString": "ff0000", "identifier": false,
                    "alternateArtwork": {"shieldText": "A", "width": 31.5,
                                         "iconFallbackShieldDataSource": {"shieldType": 2}}, "artwork": {"shieldType": 0}}},
    "incidents": {"i": {"title": "", "start": -60.5, "blocking": true,
                        "affectedEntities": [{"muid": 4, "nextStopIDs": [1]}]}},
    "service": {"delay": null, "answer": "error", "lines": ["A"], "error": {"domain": "D", "code": -1}},
    "missingTexts": ["x"]})";
  const auto world = readScenario(text);
  ASSERT_TRUE(world) << world.error().description();
  const std::string once = jsonText(written(world->world));
  const auto again = readScenario(once);
  ASSERT_TRUE(again) << again.error().description();
  EXPECT_EQ(jsonText(written(again->world)), once);
  // Every key that was given, and none that was not.
  Json given = Json::parse(text), found = Json::parse(once);
  EXPECT_EQ(found.size(), given.size()) << once;
  EXPECT_EQ(found["lines"]["A"]["artwork"].size(), 1U) << "a shield without anything is there: " << once;
  EXPECT_EQ(found["service"].size(), given["service"].size());
  EXPECT_EQ(found["incidents"]["i"]["title"], "");
}

}  // namespace
}  // namespace linewatch::simulation

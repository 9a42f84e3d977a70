#include "simulation/recording/session_recorder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulation/recording/recorded_host.h"
#include "simulation/scenario/anonymous_scenario.h"
#include "simulation/scenario/scenario_json.h"
#include "simulation/scenario/scenario_run.h"
#include "simulation/scenario/transcript_difference.h"

namespace linewatch::simulation {
namespace {

using testing::HasSubstr;
using testing::Not;

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

/// The events but for those of the host's own, which a recording names differently.
Lines callsIn(const Lines& transcript) {
  Lines calls;
  for (const std::string& line : transcript) {
    if (line.find("\"snapshot\"") == std::string::npos && line.find("\"updateResult\"") == std::string::npos)
      calls.push_back(line);
  }
  return calls;
}

std::string lastSnapshotIn(const Lines& transcript) {
  const auto last = std::find_if(transcript.rbegin(), transcript.rend(), [](const std::string& line) {
    return line.find("\"snapshot\"") != std::string::npos;
  });
  return last == transcript.rend() ? "" : *last;
}

Lines replayed(const std::string& scenario) {
  const auto transcript = runScenario(scenario);
  EXPECT_TRUE(transcript) << transcript.error().description() << "\n" << scenario;
  return transcript ? *transcript : Lines();
}

std::string difference(const Lines& recorded, const Lines& again) {
  const auto text = [](const Lines& lines) {
    std::string all;
    for (const std::string& line : lines) all += line + "\n";
    return all;
  };
  const std::string first = text(recorded), second = text(again);
  return transcriptDifference({"recorded", first}, {"replayed", second})->value_or("none");
}

std::string contentOf(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(SessionRecorderTest, ASampleScenarioThatIsRecordedMakesTheSameCallsAgain) {
  int count = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(LINEWATCH_ROOT) / "samples" / "scenarios")) {
    if (entry.path().extension() != ".json") continue;
    auto scenario = readScenario(contentOf(entry.path()));
    ASSERT_TRUE(scenario) << entry.path();
    // A real platform can always archive.
    if (!std::ranges::all_of(scenario->steps, RecordedHost::canRecord) || !scenario->world.archives) continue;
    SCOPED_TRACE(entry.path());
    Lines calls;
    std::string shown, recorded;
    {
      RecordedHost host(std::move(scenario->world));
      for (const Step& step : scenario->steps) host.perform(step);
      recorded = host.recorder().scenario().value_or("");
      host.perform(step::Snapshot{});
      calls = callsIn(host.transcript());
      shown = lastSnapshotIn(host.transcript());
    }
    const Lines again = replayed(recorded);
    EXPECT_EQ(difference(calls, callsIn(again)), "none") << recorded;
    EXPECT_EQ(lastSnapshotIn(again), shown) << recorded;
    ++count;
  }
  EXPECT_GE(count, 6);
}

/// A visible widget with one line, whose incident changes before each update.
class LongRecordingTest : public testing::Test {
 protected:
  void start(const SessionRecorder::Limits& limits) {
    World world;
    world.lines["U1"] = {.muid = 1, .name = "U1"};
    world.favorites = {{.line = "U1"}};
    host_ = std::make_unique<RecordedHost>(std::move(world), limits);
    host_->perform(step::Load{});
    host_->perform(step::Appear{});
    host_->perform(step::Advance{Seconds(1)});
  }
  /// An update to an incident with the title, every two minutes.
  void update(const std::string& title, const std::string& description = "") {
    host_->setWorld([&](World& world) {
      WorldIncident& incident = world.incidents[title];
      incident.muid = world.incidents.size();
      incident.title = title;
      incident.fullDescription = description;
      world.lines["U1"].incidents = {title};
    });
    host_->perform(step::Advance{Seconds(119)});
    host_->perform(step::Update{});
    host_->perform(step::Advance{Seconds(1)});
  }
  std::string recorded() { return host_->recorder().scenario().value_or(""); }
  /// The rows now, in the recorded run and in its replay.
  void expectSameRows() {
    const std::string scenario = recorded();
    host_->perform(step::Snapshot{});
    const std::string shown = lastSnapshotIn(host_->transcript());
    host_ = nullptr;
    EXPECT_EQ(lastSnapshotIn(replayed(scenario)), shown) << scenario;
  }

  std::unique_ptr<RecordedHost> host_;
};

TEST_F(LongRecordingTest, KeepsTheLastHour) {
  start({});
  for (int i = 0; i < 60; ++i) update("Incident of minute " + std::to_string(2 * i + 2) + ".");
  EXPECT_THAT(recorded(), HasSubstr("Incident of minute 62."));
  EXPECT_THAT(recorded(), Not(HasSubstr("Incident of minute 56.")));
  expectSameRows();
}

TEST_F(LongRecordingTest, KeepsLessThanAnHourOfLongTexts) {
  constexpr std::size_t kLimit = 100'000;
  start({.bytes = kLimit});
  for (int i = 0; i < 20; ++i) update("Incident " + std::to_string(i) + ".", std::string(10'000, 'x'));
  EXPECT_LE(recorded().size(), kLimit);
  EXPECT_GE(recorded().size(), kLimit / 2);
  expectSameRows();
}

TEST_F(LongRecordingTest, GoesOnAfterAnAnswerThatIsTooLarge) {
  start({.bytes = 50'000});
  update("Too long", std::string(100'000, 'x'));
  EXPECT_FALSE(host_->recorder().scenario());
  update("Short again");
  update("And again");
  EXPECT_THAT(recorded(), HasSubstr("And again"));
  expectSameRows();
}

TEST_F(LongRecordingTest, TheSameAnswerTakesNoRoom) {
  start({});
  update("Works");
  const std::size_t before = recorded().size();
  for (int i = 0; i < 20; ++i) update("Works");
  EXPECT_LT(recorded().size(), before + 20 * 200);
}

TEST(AnonymousRecordingTest, KeepsWhatIsEqualEqualAndSaysNoNames) {
  World world;
  world.systems["Metro"] = {77, "Metro", std::nullopt};
  for (const char* const name : {"U1", "U2"}) {
    world.lines[name] = {.muid = world.lines.size() + 100, .name = name, .system = "Metro"};
    world.lines[name].alternateArtwork = TransitArtworkDataSource{};
    world.lines[name].alternateArtwork->shieldDataSource = ShieldDataSource{.shieldText = name};
    world.lines[name].incidents = {"strike"};
    world.favorites.push_back({.line = name});
  }
  world.incidents["strike"] = {.muid = 9, .title = "Strike at Zoo", .start = {}, .end = {}};
  world.incidents["strike"].infoURL = "https://metro.example/strike";
  std::string recorded;
  {
    RecordedHost host(std::move(world));
    for (const Step& step : std::vector<Step>{step::Load{}, step::Appear{}, step::Advance{Seconds(1)},
                                              step::DisplayMode{WidgetDisplayMode::expanded}, step::Tap{0},
                                              step::Advance{Seconds(1)}})
      host.perform(step);
    recorded = host.recorder().scenario().value_or("");
  }
  const auto anonymous = anonymousScenario(recorded);
  ASSERT_TRUE(anonymous) << anonymous.error().description();
  for (const char* const word : {"U1", "U2", "Metro", "metro", "Strike", "Zoo", "77", "100"})
    EXPECT_THAT(*anonymous, Not(HasSubstr(word)));
  const auto kinds = [](const Lines& transcript) {
    Lines events;
    for (const std::string& line : transcript)
      events.push_back(Json::parse(line)["event"].get<std::string>());
    return events;
  };
  const Lines before = replayed(recorded), after = replayed(*anonymous);
  EXPECT_EQ(kinds(after), kinds(before)) << *anonymous;
  const auto rows = [](const Lines& transcript) {
    return Json::parse(lastSnapshotIn(transcript))["rows"].size();
  };
  EXPECT_EQ(rows(after), rows(before)) << *anonymous;
  EXPECT_THAT(*anonymous, Not(HasSubstr("incident 2"))) << "both lines share the incident";
}

}  // namespace
}  // namespace linewatch::simulation

#include "simulation/scenario/scenario.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/companion_application.h"
#include "simulation/simulated_platform.h"

namespace linewatch::simulation {
namespace {

using testing::ElementsAre;

Scenario scenarioOf(std::string_view text) {
  auto scenario = readScenario(text);
  if (scenario) return *std::move(scenario);
  ADD_FAILURE() << scenario.error().info.at(kLocalizedDescriptionKey).description();
  return {};
}

std::string faultOf(std::string_view text) {
  const auto scenario = readScenario(text);
  return scenario ? "none" : scenario.error().info.at(kLocalizedDescriptionKey).description();
}

TEST(Scenario, ANewEntryOfATableIsNamedByItsKeyAndNumberedByItsPlace) {
  const World world =
      scenarioOf(R"({"lines": {"12": {}, "S": {"name": ""}}, "incidents": {"x": {}, "y": {}}})").world;
  EXPECT_EQ(world.lines.find("12")->name, "12");
  EXPECT_EQ(world.lines.find("S")->name, "");
  EXPECT_EQ(world.lines.find("S")->muid, 2U);
  EXPECT_EQ(world.incidents.find("y")->muid, 2U);
  EXPECT_EQ(world.incidents.find("x")->title, std::nullopt);
}

TEST(Scenario, NumbersKeepTheirKindAndAllTheirDigits) {
  const World world = scenarioOf(R"({
    "seed": 4294967295, "lines": {"B": {"muid": 18446744073709551615}}, "incidents": {"i": {"start": -60.5}},
    "preferences": {"n": -3, "largest": 9223372036854775807, "unsigned": 9223372036854775808, "half": 0.5,
                    "whole": 2.0, "beyond": 18446744073709551616, "list": ["x", {"y": 1}]}})")
                          .world;
  EXPECT_EQ(world.seed.value, 4294967295U);
  EXPECT_EQ(world.lines.find("B")->muid, 18446744073709551615U);
  EXPECT_EQ(world.incidents.find("i")->start, Seconds(-60.5));
  EXPECT_EQ(Value(world.preferences), Value(Dictionary{{"n", -3},
                                                       {"largest", std::int64_t{9223372036854775807}},
                                                       {"unsigned", 9223372036854775808U},
                                                       {"half", 0.5},
                                                       {"whole", 2.0},
                                                       {"beyond", 18446744073709551616.0},
                                                       {"list", Array{"x", Dictionary{{"y", 1}}}}}));
}

TEST(Scenario, ReadsTheOrderOfLinesAndThePartsOfAnArtwork) {
  const World world = scenarioOf(R"({
    "host": {"compact": [300, 100.5]}, "favorites": [{"line": "B"}, {"kind": "line"}],
    "lines": {"B": {"incidents": ["i", "i"]},
              "A": {"artwork": {}, "alternateArtwork": {"cartoID": 5, "iconFallbackShieldDataSource": {"shieldType": 2}}}},
    "incidents": {"i": {"end": null, "affectedEntities": [{"muid": 3, "nextStopIDs": [4]}]}},
    "service": {"answer": "error", "error": {"domain": "D", "code": -1, "info": {"k": "v"}}}})")
                          .world;
  EXPECT_EQ(world.host.compact, (Size{300, 100.5}));
  EXPECT_EQ(world.host.expanded, (Size{359, 440})) << "the default";
  EXPECT_EQ(world.favorites[0].line, "B");
  EXPECT_EQ(world.favorites[1].line, std::nullopt);
  EXPECT_EQ(world.lines.begin()->first, "B") << "as written, not sorted";
  EXPECT_THAT(world.lines.find("B")->incidents, ElementsAre("i", "i"));
  EXPECT_EQ(world.lines.find("A")->artwork, TransitArtworkDataSource());
  const auto& icon = *world.lines.find("A")->alternateArtwork;
  EXPECT_EQ(icon.iconDataSource->cartoID, 5);
  EXPECT_EQ(icon.iconFallbackShieldDataSource->shieldType, 2);
  EXPECT_FALSE(icon.shieldDataSource);
  const WorldIncident& incident = *world.incidents.find("i");
  EXPECT_EQ(incident.end, std::nullopt);
  EXPECT_EQ(incident.affectedEntities.front()->nextStopIDs(), std::vector<std::uint64_t>{4});
  EXPECT_EQ(world.service.error, (Error{"D", -1, {{"k", "v"}}}));
}

TEST(Scenario, UpdatesAreNumberedAndKeysOfAStepMayStandInAnyOrder) {
  const auto steps = scenarioOf(R"({"steps": [{"do": "load"}, {"do": "willAppear"}, {"do": "update"},
    {"do": "update", "id": "mine"}, {"do": "update"}, {"seconds": 1.5, "do": "advance"}, {"do": "didDisappear"},
    {"do": "release"}, {"do": "load"}, {"do": "restart"}]})")
                         .steps;
  ASSERT_EQ(steps.size(), 10U);
  EXPECT_FALSE(std::get<step::Appear>(steps[1]).did);
  EXPECT_EQ(std::get<step::Update>(steps[2]).id, "u1");
  EXPECT_EQ(std::get<step::Update>(steps[3]).id, "mine");
  EXPECT_EQ(std::get<step::Update>(steps[4]).id, "u3");
  EXPECT_EQ(std::get<step::Advance>(steps[5]).seconds, Seconds(1.5));
  EXPECT_FALSE(std::get<step::Disappear>(steps[6]).will);
}

TEST(Scenario, ASetMergesObjectsAndReplacesOtherValues) {
  const Scenario scenario = scenarioOf(R"({
    "lines": {"A": {"muid": 5, "incidents": ["i"], "artwork": {"shieldText": "A", "width": 7}}},
    "incidents": {"i": {"title": "Strike", "end": 60}}, "random": [1, 2], "preferences": {"a": {"x": 1, "y": 2}, "b": 1},
    "steps": [{"do": "set", "lines": {"A": {"incidents": [], "artwork": {"shieldText": "B"}}, "N": {}},
               "incidents": {"i": {"end": null}}, "random": [3], "preferences": {"a": {"x": 3}}},
              {"do": "set", "favorites": [{"line": "N"}]}]})");
  World world = scenario.world;
  for (const Step& step : scenario.steps) std::get<step::Set>(step).change(world);
  const WorldLine& line = *world.lines.find("A");
  EXPECT_EQ(line.muid, 5U);
  EXPECT_TRUE(line.incidents.empty());
  EXPECT_EQ(line.artwork->shieldDataSource->shieldText, "B");
  EXPECT_EQ(line.artwork->intrinsicWidth, 7);
  EXPECT_EQ(world.lines.find("N")->muid, 2U);
  EXPECT_EQ(world.incidents.find("i")->title, "Strike");
  EXPECT_EQ(world.incidents.find("i")->end, std::nullopt);
  EXPECT_THAT(world.random.value, ElementsAre(3U));
  EXPECT_EQ(Value(world.preferences), Value(Dictionary{{"a", Dictionary{{"x", 3}, {"y", 2}}}, {"b", 1}}));
}

TEST(Scenario, ASetOfPreferencesMergesWithTheStoreAndAnotherSetLeavesItAlone) {
  const Scenario scenario = scenarioOf(R"({
    "preferences": {"a": {"x": 1}},
    "steps": [{"do": "set", "preferences": {"a": {"x": 1}}}, {"do": "set", "locale": "de"}]})");
  const auto platform = SimulatedPlatform::make(scenario.world);
  const auto set = [&](std::size_t step) {
    platform->changeWorld(std::get<step::Set>(scenario.steps[step]).change);
  };
  const auto store = platform->makePreferencesStore(kCompanionAppGroupSuite);
  store->setObject(Dictionary{{"x", 2}, {"y", 3}}, "a");
  store->setObject("stays", "b");
  set(0);
  EXPECT_EQ(store->objectForKey("a"), Value(Dictionary{{"x", 1}, {"y", 3}}));
  store->removeObject("a");
  set(1);
  EXPECT_EQ(store->objectForKey("a"), std::nullopt);
  EXPECT_EQ(store->objectForKey("b"), Value("stays"));
}

TEST(Scenario, AFaultNamesThePathToTheFirstWrongValue) {
  struct Row {
    const char* text;
    const char* fault;
  };
  for (
      const Row& row : {
          Row{R"([1])", "the scenario must be an object"},
          Row{R"({"lokale": "de"})", "lokale: there is no such key"},
          Row{R"({"locale": 7})", "locale: must be a text"},
          Row{R"({"layoutDirection": "up"})", R"(layoutDirection: must be one of "ltr", "rtl")"},
          Row{R"({"scale": 0})", "scale: must be more than 0"},
          Row{R"({"textSize": "XM"})",
              R"(textSize: must be one of "XS", "S", "M", "L", "XL", "XXL", "XXXL", "AX1", "AX2", "AX3", "AX4", "AX5")"},
          Row{R"({"seed": -1})", "seed: must be a whole number from 0 to 4294967295"},
          Row{R"({"random": [1, 4294967296]})", "random[1]: must be a whole number from 0 to 4294967295"},
          Row{R"({"host": {"compact": [1]}})", "host.compact: must be two numbers, a width and a height"},
          Row{R"({"host": {"hosted": "no"}})", "host.hosted: must be true or false"},
          Row{R"({"preferences": {"a": [null]}})", "preferences.a[0]: must not be null"},
          Row{R"({"favorites": {}})", "favorites: must be an array"},
          Row{R"({"favorites": [{}, {"line": "A"}]})", R"(favorites[1].line: there is no line "A")"},
          Row{R"({"favorites": [{"kind": "stop"}]})",
              R"(favorites[0].kind: must be one of "line", "place", "route", "region")"},
          Row{R"({"lines": {"A 1": {"system": "M"}}})", R"(lines["A 1"].system: there is no system "M")"},
          Row{R"({"lines": {"A": {"incidents": ["x\n"]}}})",
              R"(lines.A.incidents[0]: there is no incident "x\n")"},
          Row{R"({"lines": {"A": {"muid": 1.5}}})",
              "lines.A.muid: must be a whole number from 0 to 18446744073709551615"},
          Row{R"({"lines": {"A": {"artwork": {"shieldTxt": ""}}}})",
              "lines.A.artwork.shieldTxt: there is no such key"},
          Row{R"({"incidents": {"i": {"start": "now"}}})", "incidents.i.start: must be a number"},
          Row{R"({"service": {"delay": -1}})", "service.delay: must not be negative"},
          Row{R"({"diagnosis": 4})", "diagnosis: must be a whole number from 0 to 3"},
          Row{R"({"steps": [{}]})", "steps[0].do: is missing"},
          Row{R"({"steps": [7]})", "steps[0]: must be an object"},
          Row{R"({"steps": [{"do": "load"}, {"do": "load"}]})", "steps[1]: the widget is loaded already"},
          Row{R"({"steps": [{"do": "load"}, {"do": "restart"}, {"do": "appear"}]})",
              "steps[2]: there is no widget at this point: a \"load\" must come before"},
          Row{R"({"steps": [{"do": "advance"}]})", "steps[0].seconds: is missing"},
          Row{R"({"steps": [{"do": "advance", "seconds": -1}]})", "steps[0].seconds: must not be negative"},
          Row{R"({"steps": [{"do": "advance", "seconds": 1e18}]})",
              "steps[0].seconds: must be at most 31622400, a year"},
          Row{R"({"steps": [{"do": "load", "now": true}]})", "steps[0].now: there is no such key"},
          Row{R"({"steps": [{"do": "set", "steps": []}]})", "steps[0].steps: there is no such key"},
          Row{R"({"steps": [{"do": "set", "lines": {"A": {}}}, {"do": "set", "favorites": [{"line": "B"}]}]})",
              R"(steps[1].favorites[0].line: there is no line "B")"},
          Row{R"({"steps": [{"do": "load"}, {"do": "tap", "row": -1}]})",
              "steps[1].row: must be a whole number from 0 to 18446744073709551615"},
          // The first of two faults.
          Row{R"({"scale": "x", "locale": 1})", "scale: must be a number"},
      }) {
    EXPECT_EQ(faultOf(row.text), row.fault) << row.text;
  }
  EXPECT_THAT(faultOf(R"({"steps": [{"do": "fly"}]})"),
              testing::StartsWith("steps[0].do: must be one of \"load\", \"appear\""));
}

TEST(Scenario, AFaultNamesThePlaceWhereTheTextIsNotJSON) {
  EXPECT_THAT(faultOf("{\n  \"locale\": nul}"), testing::StartsWith("line 2, column "));
  EXPECT_THAT(faultOf(""), testing::StartsWith("line 1, column 1: "));
  EXPECT_THAT(faultOf("{} x"), testing::StartsWith("line 1, column 4: "));
  EXPECT_THAT(faultOf("{\"locale\": \"\xFF\"}"), testing::StartsWith("line 1, column "));
}

TEST(Scenario, KeysGivenTwiceAreRefusedWithTheirPath) {
  EXPECT_EQ(faultOf(R"({"lines": {"A": {}, "B": {}, "A": {}}})"), "lines.A: is given twice");
  EXPECT_EQ(faultOf(R"({"steps": [{}, [], {"do": "load", "do": "load"}]})"), "steps[2].do: is given twice");
  EXPECT_EQ(faultOf(R"({"preferences": {"a": {"b": 1}, "b": {"b": [[1], {"": 1, "": 2}]}}})"),
            R"(preferences.b.b[1][""]: is given twice)");
  EXPECT_EQ(faultOf(R"({"seed": 1, "seed": 2, nonsense)"), "seed: is given twice") << "the first fault";
  EXPECT_EQ(faultOf(R"({"lines": {"A": {}, "B": {}}, "incidents": {"A": {}}})"), "none");
}

TEST(Scenario, NumbersBeyondADoubleAndDeepNestingAreRefused) {
  EXPECT_EQ(faultOf(R"({"steps": [{"do": "load"}, {"seconds": 1e400}]})"),
            "steps[1].seconds: 1e400 is too large a number");
  EXPECT_EQ(faultOf(R"({"preferences": {"a": [1, -1e999]}})"),
            "preferences.a[1]: -1e999 is too large a number");
  EXPECT_EQ(faultOf("1e999"), "1e999 is too large a number");
  const auto nested = [](std::size_t levels) {
    return R"({"preferences": {"a": )" + std::string(levels - 2, '[') + std::string(levels - 2, ']') + "}}";
  };
  EXPECT_EQ(faultOf(nested(100)), "none");
  EXPECT_EQ(faultOf(nested(101)), "nested too deep: more than 100 levels");
  EXPECT_EQ(faultOf(std::string(1000000, '[')), "nested too deep: more than 100 levels");
}

}  // namespace
}  // namespace linewatch::simulation

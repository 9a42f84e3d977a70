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

TEST(Scenario, EverythingHasADefault) {
  const World plain;
  const Scenario scenario = scenarioOf("{}");
  EXPECT_TRUE(scenario.steps.empty());
  EXPECT_EQ(scenario.world.host.expanded, plain.host.expanded);
  EXPECT_EQ(scenario.world.service.delay, Seconds(0.5));
  const World world =
      scenarioOf(R"({"lines": {"12": {}, "S": {"name": ""}}, "incidents": {"x": {}, "y": {}}})").world;
  EXPECT_EQ(world.lines.find("12")->name, "12");
  EXPECT_EQ(world.lines.find("S")->name, "");
  EXPECT_EQ(world.lines.find("S")->muid, 2U);
  EXPECT_EQ(world.incidents.find("y")->muid, 2U);
  EXPECT_EQ(world.incidents.find("x")->title, std::nullopt);
}

TEST(Scenario, ReadsAWorld) {
  const World world = scenarioOf(R"({
    "locale": "de-CH", "layoutDirection": "rtl", "scale": 1.5, "textSize": "AX3", "seed": 4294967295, "random": [1, 2],
    "host": {"hosted": false, "compact": [300, 100.5], "activeMode": "expanded", "bounds": [1, 2]},
    "preferences": {"on": true, "n": -3, "big": 18446744073709551615, "half": 0.5, "list": ["x", {"y": 1}]},
    "favorites": [{"line": "B"}, {"kind": "place", "name": "Home"}, {"kind": "line"}],
    "systems": {"M": {"muid": 9, "name": "Metro", "artwork": {"shieldText": "M", "width": 40}}},
    "lines": {"B": {"muid": 18446744073709551615, "system": "M", "incidents": ["i", "i"], "identifier": false},
              "A": {"artwork": {}, "alternateArtwork": {"cartoID": 5, "iconFallbackShieldDataSource": {"shieldType": 2}}}},
    "incidents": {"i": {"title": "Strike", "start": -60.5, "end": null, "blocking": true,
                        "affectedEntities": [{"muid": 3, "nextStopIDs": [4]}]}},
    "service": {"delay": 0, "answer": "error", "error": {"domain": "D", "code": -1, "info": {"k": "v"}}},
    "diagnosis": 3, "capabilities": {"wapi": true}, "lockState": 2, "opens": false, "acceptsActivities": false,
    "archives": false, "compresses": false, "bundle": "none", "missingTexts": ["a", "b"]})")
                          .world;
  EXPECT_EQ(world.locale, "de-CH");
  EXPECT_EQ(world.layoutDirection, LayoutDirection::rightToLeft);
  EXPECT_EQ(world.scale, 1.5);
  EXPECT_EQ(world.textSize, ui::TextSizeCategory::AX3);
  EXPECT_EQ(world.seed.value, 4294967295U);
  EXPECT_THAT(world.random.value, ElementsAre(1U, 2U));
  EXPECT_FALSE(world.host.hosted);
  EXPECT_EQ(world.host.compact, (Size{300, 100.5}));
  EXPECT_EQ(world.host.expanded, (Size{359, 440})) << "stays at its default";
  EXPECT_EQ(world.host.activeMode, WidgetDisplayMode::expanded);
  EXPECT_EQ(Value(world.preferences), Value(Dictionary{{"on", true},
                                                       {"n", -3},
                                                       {"big", 18446744073709551615U},
                                                       {"half", 0.5},
                                                       {"list", Array{"x", Dictionary{{"y", 1}}}}}));
  ASSERT_EQ(world.favorites.size(), 3U);
  EXPECT_EQ(world.favorites[0].line, "B");
  EXPECT_EQ(world.favorites[1].kind, WorldFavorite::Kind::place);
  EXPECT_EQ(world.favorites[2].line, std::nullopt);
  EXPECT_EQ(world.systems.find("M")->artwork->shieldDataSource->shieldText, "M");
  EXPECT_EQ(world.systems.find("M")->artwork->intrinsicWidth, 40);
  EXPECT_EQ(world.lines.begin()->first, "B") << "as written, not as sorted";
  EXPECT_EQ(world.lines.find("B")->muid, 18446744073709551615U);
  EXPECT_THAT(world.lines.find("B")->incidents, ElementsAre("i", "i"));
  EXPECT_EQ(world.lines.find("A")->artwork, TransitArtworkDataSource());
  const auto& icon = *world.lines.find("A")->alternateArtwork;
  EXPECT_EQ(icon.iconDataSource->cartoID, 5);
  EXPECT_EQ(icon.iconFallbackShieldDataSource->shieldType, 2);
  EXPECT_FALSE(icon.shieldDataSource);
  const WorldIncident& incident = *world.incidents.find("i");
  EXPECT_EQ(incident.start, Seconds(-60.5));
  EXPECT_EQ(incident.end, std::nullopt);
  EXPECT_EQ(incident.affectedEntities.front()->nextStopIDs(), std::vector<std::uint64_t>{4});
  EXPECT_EQ(world.service.error, (Error{"D", -1, {{"k", "v"}}}));
  EXPECT_EQ(world.diagnosis, ConnectionFailureDiagnosis::unknown);
  EXPECT_TRUE(world.capabilities.at("wapi"));
  EXPECT_EQ(world.bundle, WorldBundle::none);
  EXPECT_TRUE(world.missingTexts.contains("b"));
}

TEST(Scenario, ReadsTheStepsAndNumbersUpdates) {
  const auto steps =
      scenarioOf(R"({"steps": [{"do": "load"}, {"do": "willAppear"}, {"do": "appear"}, {"do": "update"},
    {"do": "update", "id": "mine"}, {"do": "update"}, {"seconds": 1.5, "do": "advance"},
    {"do": "displayMode", "mode": "expanded"}, {"do": "tap", "row": 3}, {"do": "resize", "width": 1, "height": 2},
    {"do": "textSize", "category": "XS"}, {"do": "memoryWarning"}, {"do": "snapshot"}, {"do": "didDisappear"},
    {"do": "release"}, {"do": "load"}, {"do": "restart"}]})")
          .steps;
  ASSERT_EQ(steps.size(), 17U);
  EXPECT_FALSE(std::get<step::Appear>(steps[1]).did);
  EXPECT_TRUE(std::get<step::Appear>(steps[2]).did);
  EXPECT_EQ(std::get<step::Update>(steps[3]).id, "u1");
  EXPECT_EQ(std::get<step::Update>(steps[4]).id, "mine");
  EXPECT_EQ(std::get<step::Update>(steps[5]).id, "u3");
  EXPECT_EQ(std::get<step::Advance>(steps[6]).seconds, Seconds(1.5));
  EXPECT_EQ(std::get<step::Tap>(steps[8]).row, 3U);
  EXPECT_EQ(std::get<step::Resize>(steps[9]).height, 2);
  EXPECT_FALSE(std::get<step::Disappear>(steps[13]).will);
}

TEST(Scenario, ASetMergesObjectsAndReplacesEverythingElse) {
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

TEST(Scenario, WhatIsSetAgainStartsAgain) {
  const Scenario scenario = scenarioOf(R"({
    "random": [5, 6], "seed": 9, "preferences": {"a": {"x": 1}},
    "steps": [{"do": "set", "random": [5, 6]}, {"do": "set", "seed": 9},
              {"do": "set", "preferences": {"a": {"x": 1}}}, {"do": "set", "locale": "de"}]})");
  const auto platform = SimulatedPlatform::make(scenario.world);
  const auto set = [&](std::size_t step) {
    platform->changeWorld(std::get<step::Set>(scenario.steps[step]).change);
  };
  RandomSource& random = platform->randomSource();
  EXPECT_EQ(random.next(), 5U);
  set(0);
  EXPECT_EQ(random.next(), 5U);
  EXPECT_EQ(random.next(), 6U);
  const std::uint32_t first = random.next(), second = random.next();
  set(1);
  EXPECT_EQ(random.next(), first);

  const auto store = platform->makePreferencesStore(kCompanionAppGroupSuite);
  store->setObject(Dictionary{{"x", 2}, {"y", 3}}, "a");
  store->setObject("stays", "b");
  set(2);
  EXPECT_EQ(store->objectForKey("a"), Value(Dictionary{{"x", 1}, {"y", 3}})) << "merged with what is stored";
  store->removeObject("a");
  set(3);
  EXPECT_EQ(store->objectForKey("a"), std::nullopt);
  EXPECT_EQ(store->objectForKey("b"), Value("stays"));
  EXPECT_EQ(random.next(), second) << "another change starts nothing again";
}

TEST(Scenario, NamesThePlaceOfTheFirstFault) {
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
              "steps[2]: there is no widget at this point: it takes a \"load\" before"},
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
          // Two faults: the first one.
          Row{R"({"scale": "x", "locale": 1})", "scale: must be a number"},
      }) {
    EXPECT_EQ(faultOf(row.text), row.fault) << row.text;
  }
  EXPECT_THAT(faultOf(R"({"steps": [{"do": "fly"}]})"),
              testing::StartsWith("steps[0].do: must be one of \"load\", \"appear\""));
}

TEST(Scenario, TellsWhereTheTextIsNoJSON) {
  EXPECT_THAT(faultOf("{\n  \"locale\": nul}"), testing::StartsWith("line 2, column "));
  EXPECT_THAT(faultOf(""), testing::StartsWith("line 1, column 1: "));
  EXPECT_THAT(faultOf("{} x"), testing::StartsWith("line 1, column 4: "));
  EXPECT_EQ(faultOf(R"({"lines": {"A": {}, "B": {}, "A": {}}})"), "lines.A: is given twice");
  EXPECT_EQ(faultOf(R"({"steps": [{}, {"do": "load", "do": "load"}]})"), "steps[1].do: is given twice");
  EXPECT_EQ(faultOf(R"({"steps": [{"do": "load"}, {"seconds": 1e400}]})"),
            "steps[1].seconds: 1e400 is too large a number");
  EXPECT_EQ(faultOf(std::string(1000000, '[')), "nested too deep: more than 100 levels");
  EXPECT_EQ(faultOf(R"({"scale": 1e999})").find('\n'), std::string::npos);
  EXPECT_NE(faultOf(R"({"scale": 1e999})"), "none");
  EXPECT_NE(faultOf("{\"locale\": \"\xFF\"}"), "none");
}

}  // namespace
}  // namespace linewatch::simulation

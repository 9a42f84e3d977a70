#include "simulation/simulated_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch::simulation {
namespace {

using testing::ElementsAre;

World cityOfTwoLines() {
  World world;
  world.systems["M"] = {.muid = 9, .name = "Metro", .artwork = {}};
  world.incidents["strike"] = {
      .muid = 11, .title = "Strike", .secondaryText = "Few trains", .start = {}, .end = {}};
  world.incidents["works"] = {
      .muid = 12, .title = "Works", .secondaryText = {}, .start = Seconds(-60), .end = Seconds(60)};
  world.lines["A"] = {.muid = 1, .name = "A", .system = "M"};
  world.lines["A"].incidents = {"strike", "unheard of", "works"};
  world.lines["B"] = {.muid = 2, .name = "B", .system = "M"};
  world.lines["B"].incidents = {"works"};
  return world;
}

struct Answer {
  bool hasItems = false;
  std::vector<std::string> names;
  std::optional<Error> error;
  double time = -1;
};

Answer askFor(SimulatedPlatform& platform, std::vector<MapItemIdentifier> identifiers) {
  auto answer = std::make_shared<Answer>();
  platform.transitService()
      .ticketForTransitLines(std::move(identifiers))
      ->submit(
          [answer, &platform](std::shared_ptr<const TransitLineItems> items, std::optional<Error> error) {
            answer->hasItems = items != nullptr;
            if (items) {
              for (const SharedLineItem& item : *items) answer->names.push_back(item->name());
            }
            answer->error = std::move(error);
            answer->time = platform.mainLoop().elapsed().count();
          });
  platform.advance(1);
  return *answer;
}

TEST(SimulatedPlatform, AnswersLookUpsAsTheWorldSays) {
  struct Row {
    const char* name;
    WorldService::Answer answer;
    std::vector<MapItemIdentifier> asked;
    bool hasItems;
    std::vector<std::string> names;
    bool fails;
  };
  using enum WorldService::Answer;
  for (const Row& row : {
           Row{"in the order asked, unknown ones left out", lines, {{2}, {77}, {1}}, true, {"B", "A"}, false},
           Row{"asked twice", lines, {{2}, {2}}, true, {"B", "B"}, false},
           Row{"all", all, {{2}}, true, {"A", "B"}, false},
           Row{"error", error, {{2}}, false, {}, true},
           Row{"nothing", nothing, {{2}}, false, {}, false},
       }) {
    SCOPED_TRACE(row.name);
    World world = cityOfTwoLines();
    world.service.answer = row.answer;
    world.service.delay = Seconds(0.25);
    const auto platform = SimulatedPlatform::make(world);
    const Answer answer = askFor(*platform, row.asked);
    EXPECT_EQ(answer.hasItems, row.hasItems);
    EXPECT_EQ(answer.names, row.names);
    EXPECT_EQ(answer.error.has_value(), row.fails);
    if (answer.error) {
      EXPECT_EQ(*answer.error, world.service.error);
    }
    EXPECT_EQ(answer.time, 0.25);
    EXPECT_THAT(platform->transcript().names(), ElementsAre("lookup"));
  }
}

}  // namespace
}  // namespace linewatch::simulation

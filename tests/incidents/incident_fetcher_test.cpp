#include <atomic>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "incidents/companion_stores.h"
#include "incidents/debug_transit_incident.h"
#include "incidents/transit_incident_fetcher.h"
#include "platform/main_loop.h"
#include "platform/transit_service.h"
#include "simulation/forwarding_platform.h"
#include "simulation/platform_test.h"

namespace linewatch {
namespace {

using simulation::World;
using simulation::WorldFavorite;
using testing::ElementsAre;

/// Answers every look-up with no line items and an error at the same time.
class ContradictoryService final : public TransitService, public TransitLinesTicket {
 public:
  std::shared_ptr<TransitLinesTicket> ticketForTransitLines(std::vector<MapItemIdentifier>) override {
    return {std::shared_ptr<void>(), this};
  }
  void submit(Handler handler) override {
    platform().mainLoop().dispatchAsync([handler = std::move(handler)] {
      handler(std::make_shared<const TransitLineItems>(), Error{"Transit", 7, {}});
    });
  }
};

class ContradictoryPlatform final : public ForwardingPlatform {
 public:
  using ForwardingPlatform::ForwardingPlatform;
  TransitService& transitService() override { return service_; }

 private:
  ContradictoryService service_;
};

class IncidentFetcher : public PlatformTest {
 protected:
  static World city() {
    World world;
    world.lines["A"] = {.muid = 1, .name = "12"};
    world.lines["B"] = {.muid = 2, .name = "B", .identifier = false};
    world.lines["C"] = {.muid = 3, .name = "C", .incidents = {"strike"}};
    world.incidents["strike"] = {.muid = 11, .title = "Strike"};
    return world;
  }
  static WorldFavorite line(std::optional<std::string> key) {
    return {WorldFavorite::Kind::line, std::move(key), {}};
  }

  std::shared_ptr<RVResult> fetch(World world) {
    install(std::move(world));
    std::shared_ptr<RVResult> result;
    const auto request =
        RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
            [&](const std::shared_ptr<RVResult>& given) {
              EXPECT_TRUE(platform_->mainLoop().isMainThread());
              EXPECT_EQ(result, nullptr) << "called once";
              result = given;
            });
    EXPECT_EQ(result, nullptr) << "never before the call has returned";
    platform_->advance(10);
    EXPECT_EQ(request->result(), result);
    return result;
  }
};

TEST_F(IncidentFetcher, LooksUpTheFavouritesThatAreLines) {
  World world = city();
  world.favorites = {line("C"),          {WorldFavorite::Kind::place, {}, "Home"},
                     line(std::nullopt), line("B"),
                     line("A"),          line("C"),
                     line("C")};
  const auto result = fetch(world);
  ASSERT_NE(result->successObject(), nullptr);
  EXPECT_FALSE(result->error());
  EXPECT_EQ(result->successObject()->front()->name(), "C");
  EXPECT_THAT(platform_->transcript().logTexts("debug"),
              ElementsAre("Received 7 favorites from container.",
                          "Issuing favorite lines lookup request for Muids: [3, 1, 3, 3].",
                          "Received 4 line items."));
}

TEST_F(IncidentFetcher, WithoutFavouriteLinesGivesAnEmptyListAndAsksNoService) {
  World world = city();
  world.favorites = {{WorldFavorite::Kind::place, {}, "Home"}, line(std::nullopt)};
  const auto result = fetch(world);
  ASSERT_NE(result->successObject(), nullptr);
  EXPECT_TRUE(result->successObject()->empty());
  EXPECT_EQ(platform_->transcript().countOf("lookup"), 0U);
  EXPECT_TRUE(platform_->transcript().hasLogText("0 Favorite lines, returning early."));
}

TEST_F(IncidentFetcher, PassesOnTheAnswerOfTheService) {
  World world = city();
  world.favorites = {line("A")};
  world.service.answer = simulation::WorldService::Answer::error;
  const auto failed = fetch(world);
  EXPECT_EQ(failed->error(), world.service.error);
  EXPECT_EQ(failed->successObject(), nullptr);

  world.service.answer = simulation::WorldService::Answer::nothing;
  const auto neither = fetch(world);
  EXPECT_FALSE(neither->error());
  EXPECT_EQ(neither->successObject(), nullptr);
  EXPECT_TRUE(platform_->transcript().hasLogText("Received 0 line items."));

  world.preferences.insert_or_assign("Rova.LineWatch.internal.injectFakeIncidents", true);
  const auto faked = fetch(world);
  ASSERT_NE(faked->successObject(), nullptr) << "with fake incidents on, no items become an empty list";
  EXPECT_TRUE(faked->successObject()->empty());
}

TEST_F(IncidentFetcher, AnErrorWinsOverItemsThatComeWithIt) {
  World world = city();
  world.favorites = {line("A")};
  const auto contradictory = std::make_shared<ContradictoryPlatform>(std::move(world));
  installPlatform(contradictory);
  std::shared_ptr<RVResult> result;
  RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
      [&](const std::shared_ptr<RVResult>& given) { result = given; });
  contradictory->simulated().advance(10);
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(result->error(), (Error{"Transit", 7, {}}));
  EXPECT_EQ(result->successObject(), nullptr);
}

TEST_F(IncidentFetcher, InjectsFakeIncidentsByPreferenceAndRandomNumber) {
  struct Row {
    const char* name;
    std::vector<std::uint32_t> draws;
    bool inject, randomNumber;
    std::size_t incidents;
    bool isWrapped;
  };
  for (const Row& row : {
           Row{"off", {1}, false, true, 0, false},
           Row{"spared by the draw", {3}, true, false, 0, false},
           Row{"one", {4}, true, false, 1, true},
           Row{"a random number", {1, 5}, true, true, 2, true},
           Row{"a random number of none", {2, 3}, true, true, 0, true},
       }) {
    World world = city();
    world.favorites = {line("A"), line("C")};
    world.random = row.draws;
    world.preferences.insert_or_assign("Rova.LineWatch.internal.injectFakeIncidents", row.inject);
    world.preferences.insert_or_assign("Rova.LineWatch.internal.randomNumberIncidents", row.randomNumber);
    const auto result = fetch(world);
    const auto& items = *result->successObject();
    ASSERT_EQ(items.size(), 2U) << row.name;
    EXPECT_EQ(items[0]->incidents().size(), row.incidents) << row.name;
    EXPECT_EQ(dynamic_cast<const DebugTransitLineItem*>(items[0].get()) != nullptr, row.isWrapped)
        << row.name;
    EXPECT_EQ(items[1]->incidents().front()->muid(), 11U) << "a line with incidents keeps them";
    for (const auto& fake : items[0]->incidents()) {
      const Date then = platform_->mainLoop().now() - Seconds(9.5);
      EXPECT_EQ(fake->muid(), 2U);
      EXPECT_EQ(fake->summary(), "12 · Possible delays due to strike");
      EXPECT_NEAR((*fake->startDate() - (then - Seconds(86400))).count(), 0, 1e-3);
      EXPECT_NEAR((*fake->endDate() - (then + Seconds(86400))).count(), 0, 1e-3);
      EXPECT_EQ(fake->affectedEntities().front()->muid(), 1U);
    }
  }
}

TEST_F(IncidentFetcher, MakesOneContainerPerPlatformAndOneStorePerCall) {
  const auto container = defaultContainer();
  EXPECT_EQ(container, defaultContainer());
  EXPECT_NE(_rova_groupUserDefaults(), _rova_groupUserDefaults());
  _rova_groupUserDefaults()->setObject(Value(true), "key");
  EXPECT_TRUE(_rova_groupUserDefaults()->boolForKey("key"));
  install();
  EXPECT_NE(container, defaultContainer());
}

TEST(FetcherRequest, CallsEveryHandlerOnceInOrder) {
  std::vector<int> calls;
  detail::RVTransitIncidentFetcherRequest request([&](const auto&) { calls.push_back(1); });
  request.addHandler(nullptr);
  request.addHandler([&](const auto& result) {
    calls.push_back(2);
    request.addHandler([&](const auto& again) {
      EXPECT_EQ(again, result);
      calls.push_back(3);
    });
  });
  request.addHandler([&](const auto&) { calls.push_back(4); });
  EXPECT_TRUE(calls.empty());
  request.setResultAndInvokeCompletionHandlers(std::make_shared<RVResult>(nullptr, std::nullopt));
  EXPECT_THAT(calls, ElementsAre(1, 2, 3, 4));
  request.addHandler([&](const auto&) { calls.push_back(5); });
  EXPECT_EQ(calls.back(), 5);
  EXPECT_EQ(request.handlers().size(), 3U);
}

TEST(FetcherRequest, CallsAHandlerOnceWhenItRacesTheResult) {
  for (int round = 0; round < 200; ++round) {
    detail::RVTransitIncidentFetcherRequest request(nullptr);
    std::atomic<int> calls = 0;
    std::thread adder([&] {
      for (int i = 0; i < 20; ++i) request.addHandler([&](const auto&) { ++calls; });
    });
    request.setResultAndInvokeCompletionHandlers(std::make_shared<RVResult>(nullptr, std::nullopt));
    adder.join();
    EXPECT_EQ(calls, 20);
  }
}

/// A platform whose favourites cannot be read.
class UnreadableFavorites final : public ForwardingPlatform {
 public:
  std::shared_ptr<RemoteFavoritesPersister> makeRemoteFavoritesPersister() override {
    class Persister final : public RemoteFavoritesPersister {
      Outcome<Favorites> readFavorites() override { return Error{"Favorites", 7, {}}; }
    };
    return std::make_shared<Persister>();
  }
};

TEST(UnreadableFavoritesTest, GiveAnErrorOnTheMainThread) {
  const auto platform = std::make_shared<UnreadableFavorites>();
  installPlatform(platform);
  std::optional<Error> error;
  RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
      [&](const std::shared_ptr<RVResult>& result) {
        EXPECT_TRUE(platform->mainLoop().isMainThread());
        error = result->error();
      });
  platform->simulated().advance(10);
  EXPECT_EQ(error, (Error{"Favorites", 7, {}}));
  EXPECT_EQ(platform->simulated().transcript().countOf("lookup"), 0U);
  installPlatform(nullptr);
}

}  // namespace
}  // namespace linewatch

#include "feeds/feed_transit_service.h"

#include <filesystem>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"
#include "shared/failure.h"
#include "simulation/simulated_platform.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

TEST(FeedTransitService, LooksUpElsewhereAndAnswersOnceOnTheMainThread) {
  const auto world = simulation::SimulatedPlatform::make();
  installPlatform(world);
  const TemporaryFolder folder;
  const auto routes = folder.path() / "routes.txt", alerts = folder.path() / "alerts.pb";
  writeFile(routes, "route_id\n1\n2\n");
  writeFile(alerts, bytesOf(FeedSketch{.timestamp = 0}));
  MainLoop& loop = world->mainLoop();
  std::vector<std::string> answers;
  std::shared_ptr<TransitLinesTicket> last;
  const auto submit = [&](FeedTransitService& service) {
    last = service.ticketForTransitLines({{stableMuid("town", "2")}, {stableMuid("town", "1")}});
    last->submit(
        [&](const std::shared_ptr<const TransitLineItems>& items, const std::optional<Error>& error) {
          EXPECT_TRUE(loop.isMainThread());
          EXPECT_NE(items != nullptr, error.has_value());
          answers.push_back(items ? items->at(0)->name() + items->at(1)->name() : sentenceOf(*error));
        });
    EXPECT_TRUE(answers.empty()) << "not before the call has returned";
  };
  const auto feeds = [&] {
    return std::make_shared<TransitFeeds>(
        [&] {
          return std::vector<StoredFeed>{{"town", folder.path().string(), alerts.string()}};
        },
        std::make_shared<FeedDocuments>(nullptr, [&loop] { return loop.now(); }), IncidentLanguage{});
  };
  std::size_t prepared = 0;
  {
    FeedTransitService service(feeds(), loop,
                               [&, main = std::this_thread::get_id()](const TransitLineItems& items) {
                                 EXPECT_NE(std::this_thread::get_id(), main);
                                 prepared += items.size();
                               });
    submit(service);
  }
  // The service has waited for its look-up; the answer still waits for the main thread.
  EXPECT_TRUE(answers.empty());
  EXPECT_EQ(prepared, 2U);
  world->runUntilIdle();
  EXPECT_EQ(answers, std::vector<std::string>{"21"});

  answers.clear();
  std::filesystem::remove(alerts);
  {
    FeedTransitService service(feeds(), loop);
    submit(service);
  }
  world->runUntilIdle();
  EXPECT_EQ(answers,
            std::vector<std::string>{"feed town: " + alerts.string() + ": No such file or directory"});

  answers.clear();
  auto service = std::make_unique<FeedTransitService>(feeds(), loop);
  service->finish();
  submit(*service);
  const auto ticket = service->ticketForTransitLines({});
  service = nullptr;
  ticket->submit([&](const auto&, const auto& error) { answers.push_back(sentenceOf(*error)); });
  world->runUntilIdle();
  EXPECT_EQ(answers, std::vector<std::string>(2, "transit service: it takes no more look-ups"));
  installPlatform(nullptr);
}

}  // namespace
}  // namespace linewatch

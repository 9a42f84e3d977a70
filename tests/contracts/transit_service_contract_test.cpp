#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contracts/subject.h"
#include "feeds/alerts/alerts_sketch.h"
#include "feeds/feed_transit_service.h"
#include "simulation/simulated_platform.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A service that knows two lines: A, which has a strike, and B.
class City {
 public:
  City() { installPlatform(platform_); }
  virtual ~City() { installPlatform(nullptr); }
  virtual TransitService& service() = 0;
  virtual MapItemIdentifier line(const std::string& name) const = 0;
  /// Waits for the look-ups.
  virtual void finish() { platform_->advance(1); }
  std::vector<std::string> errorsLogged() const { return platform_->transcript().logTexts("error"); }

 protected:
  static simulation::World world() {
    simulation::World world;
    world.incidents["strike"] = {.muid = 11, .title = "Strike", .secondaryText = {}, .start = {}, .end = {}};
    world.lines["A"] = {.muid = 1, .name = "A"};
    world.lines["A"].incidents = {"strike"};
    world.lines["B"] = {.muid = 2, .name = "B"};
    return world;
  }

  std::shared_ptr<simulation::SimulatedPlatform> platform_ = simulation::SimulatedPlatform::make(world());
};

class SimulatedCity final : public City {
 public:
  TransitService& service() override { return platform_->transitService(); }
  MapItemIdentifier line(const std::string& name) const override { return {name == "A" ? 1U : 2U}; }
};

class DesktopCity final : public City {
 public:
  DesktopCity() {
    writeFile(folder_.path() / "routes.txt", "route_id\nA\nB\n");
    writeFile(
        folder_.path() / "alerts.pb",
        bytesOf(FeedSketch{.alerts = {{.id = "1", .selectors = {{.route = "A"}}, .header = {{"Strike", ""}}}},
                           .timestamp = 0}));
  }
  TransitService& service() override { return *service_; }
  MapItemIdentifier line(const std::string& name) const override { return {stableMuid("city", name)}; }
  void finish() override {
    service_->finish();
    City::finish();
  }

 private:
  std::shared_ptr<TransitFeeds> feeds() {
    const StoredFeed city{"city", folder_.path().string(), (folder_.path() / "alerts.pb").string()};
    return std::make_shared<TransitFeeds>(
        [city] { return std::vector{city}; },
        std::make_shared<FeedDocuments>(nullptr, [this] { return platform_->mainLoop().now(); }),
        IncidentLanguage{});
  }

  TemporaryFolder folder_;
  std::unique_ptr<FeedTransitService> service_ =
      std::make_unique<FeedTransitService>(feeds(), platform_->mainLoop());
};

class TransitServiceContract : public testing::TestWithParam<Subject<City>> {
 protected:
  std::shared_ptr<TransitLinesTicket> ticket(const std::vector<MapItemIdentifier>& lines) {
    return city_->service().ticketForTransitLines(lines);
  }
  /// A handler that records the answer under the name.
  TransitLinesTicket::Handler recording(const std::string& name) {
    return [this, name](const std::shared_ptr<const TransitLineItems>& items, std::optional<Error> error) {
      EXPECT_EQ(std::this_thread::get_id(), main_);
      ASSERT_FALSE(error) << error->description();
      ASSERT_TRUE(items);
      std::string& answer = answers_.emplace_back(name + ":");
      for (const SharedLineItem& item : *items) {
        answer += " " + item->name();
        for (const SharedIncident& incident : item->incidents())
          answer += "-" + incident->title().value_or("");
      }
    };
  }

  const std::thread::id main_ = std::this_thread::get_id();
  std::vector<std::string> answers_;
  std::shared_ptr<City> city_ = GetParam().make();
};

TEST_P(TransitServiceContract, EachLookUpIsAnsweredOnceInTheOrderAskedWithoutUnknownLines) {
  const MapItemIdentifier a = city_->line("A"), b = city_->line("B"), unknown{77};
  // The tickets may be destroyed before they are answered.
  ticket({b, unknown, a, b})->submit(recording("some"));
  ticket({unknown})->submit(recording("unknown"));
  ticket({})->submit(recording("none"));
  EXPECT_THAT(answers_, IsEmpty());
  city_->finish();
  EXPECT_THAT(answers_, ElementsAre("some: B A-Strike B", "unknown:", "none:"));
  city_->finish();
  EXPECT_EQ(answers_.size(), 3U);
  EXPECT_THAT(city_->errorsLogged(), IsEmpty());
}

TEST_P(TransitServiceContract, ATicketCanBeSubmittedOnce) {
  const auto once = ticket({city_->line("A")});
  once->submit(recording("first"));
  once->submit(recording("second"));
  city_->finish();
  once->submit(recording("third"));
  city_->finish();
  EXPECT_THAT(answers_, ElementsAre("first: A-Strike"));
  EXPECT_EQ(city_->errorsLogged().size(), 2U);
}

TEST_P(TransitServiceContract, ATicketSubmittedOnAnotherThreadIsAnsweredOnTheMainThread) {
  std::thread([&] { ticket({city_->line("A")})->submit(recording("elsewhere")); }).join();
  city_->finish();
  EXPECT_THAT(answers_, ElementsAre("elsewhere: A-Strike"));
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, TransitServiceContract,
    testing::Values(Subject<City>{"Simulation", [] { return std::make_shared<SimulatedCity>(); }},
                    Subject<City>{"Desktop", [] { return std::make_shared<DesktopCity>(); }}),
    nameOfSubject<City>);

}  // namespace
}  // namespace linewatch

#include "desktop/presence/news_watch.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "companion/companion_controller.h"
#include "desktop/bus_name.h"
#include "incidents/transit_incident_fetcher.h"
#include "machine/desktop_device.h"
#include "simulation/platform_test.h"
#include "temporary_folder.h"

namespace linewatch::desktop {
namespace {

using simulation::World;
using simulation::WorldFavorite;
using simulation::WorldService;
using State = TransitStatus::State;
using testing::ElementsAre;
using testing::IsEmpty;

/// A city with two lines, one of which has an incident.
World city() {
  World world;
  world.lines["A"] = {.muid = 1, .name = "12"};
  world.lines["C"] = {.muid = 3, .name = "C", .incidents = {"strike"}};
  world.incidents["strike"] = {.muid = 11, .title = "Strike"};
  world.favorites = {{WorldFavorite::Kind::line, "A", {}}, {WorldFavorite::Kind::line, "C", {}}};
  return world;
}

class NewsWatchTest : public PlatformTest {
 protected:
  void SetUp() override {
    install(city());
    watch_ = std::make_unique<NewsWatch>(
        *platform_,
        [](const HeardAnswer& answer, const std::function<void(const TransitNews&)>& done) {
          TransitNews news{.favorites = answer.favorites, .error = answer.error};
          if (answer.lines) news.lines = *answer.lines;
          done(news);
        },
        PanelUpdates::Settings{.refresh = Seconds(120), .readClocks = [] { return ClockReading(); }});
    installPlatform(watch_->platform());
    token_ = watch_->listen([this](const TransitStatus& status) { told_.push_back(status.state); });
  }
  void TearDown() override { token_ = nullptr; }

  /// The states that listeners are told within the time.
  std::vector<State> toldWithin(double seconds) {
    told_.clear();
    platform_->advance(seconds);
    return told_;
  }
  /// As the widget of a shown panel does.
  void askAsWidget() {
    RVTransitIncidentFetcher::make()->fetchFavoriteLinesTransitIncidentsWithCompletionHandler({});
  }

  std::unique_ptr<NewsWatch> watch_;
  std::vector<State> told_;
  std::shared_ptr<void> token_;
};

TEST_F(NewsWatchTest, HearsTheWidgetWhileThePanelIsShown) {
  EXPECT_THAT(toldWithin(1000), IsEmpty()) << "nobody asks before the panel is there";
  watch_->setPanelShown(true);
  watch_->refresh();
  EXPECT_THAT(toldWithin(1000), IsEmpty());
  askAsWidget();
  EXPECT_THAT(toldWithin(1000), ElementsAre(State::incidents));
  EXPECT_EQ(watch_->status()->lines.size(), 2U);
  EXPECT_EQ(watch_->status()->incidents.at(0).title, "Strike");

  platform_->changeWorld([](World& world) { world.favoritesError = Error{"disk", 1, {}}; });
  askAsWidget();
  EXPECT_THAT(toldWithin(1), ElementsAre(State::unknown)) << "nobody asks the service, but the news is lost";
  platform_->changeWorld([](World& world) {
    world.favoritesError = {};
    world.favorites = {};
  });
  askAsWidget();
  EXPECT_THAT(toldWithin(1), ElementsAre(State::noFavorites));
}

TEST_F(NewsWatchTest, AsksWhileThePanelIsHidden) {
  watch_->setPanelShown(false);
  EXPECT_THAT(toldWithin(1), ElementsAre(State::incidents));
  EXPECT_THAT(toldWithin(118), IsEmpty());
  EXPECT_THAT(toldWithin(16), ElementsAre(State::incidents)) << "the refresh interval, and a tenth of it";
  watch_->refresh();
  watch_->refresh();
  EXPECT_THAT(toldWithin(1), ElementsAre(State::incidents)) << "a running look-up serves both";
  platform_->changeWorld([](World& world) { world.service.answer = WorldService::Answer::nothing; });
  watch_->favoritesDidChange();
  EXPECT_THAT(toldWithin(1), ElementsAre(State::unknown)) << "an answer without lines is no good service";
  watch_->setRefresh(Seconds(600));
  EXPECT_THAT(toldWithin(599), IsEmpty());

  // The widget asks when it appears.
  watch_->setPanelShown(true);
  EXPECT_THAT(toldWithin(1000), IsEmpty());
  askAsWidget();
  platform_->advance(1);
  watch_->setPanelShown(false);
  EXPECT_THAT(toldWithin(1), IsEmpty()) << "the widget has just asked";
  EXPECT_THAT(toldWithin(665), ElementsAre(State::unknown));
  watch_->setPanelShown(true);
  platform_->advance(1000);
  watch_->setPanelShown(false);
  EXPECT_THAT(toldWithin(1), ElementsAre(State::unknown)) << "the last answer is old";
}

TEST_F(NewsWatchTest, TellsEveryListenerUntilItLeaves) {
  std::vector<int> order;
  std::shared_ptr<void> first, second;
  first = watch_->listen([&](const TransitStatus&) {
    order.push_back(1);
    first = nullptr;
    second = nullptr;
  });
  second = watch_->listen([&](const TransitStatus&) { order.push_back(2); });
  watch_->setPanelShown(false);
  platform_->advance(200);
  EXPECT_THAT(order, ElementsAre(1)) << "the others are not called after they have left";
  EXPECT_GT(told_.size(), 1U);

  watch_->refresh();
  told_.clear();
  watch_ = nullptr;
  platform_->advance(1000);
  EXPECT_THAT(told_, IsEmpty()) << "an answer that comes late";
}

TEST(LockedDevice, PutsOffOpeningUntilItIsUnlocked) {
  DesktopDevice device({});
  std::vector<std::string> opened;
  CompanionController controller(
      [&](const UserActivity& activity, const OpenHandler&) { opened.push_back(activity.activityType); },
      [&](std::function<void()> action) { device.whenUnlocked(std::move(action)); });
  device.setLocked(true);
  EXPECT_EQ(device.lockState(), 1);
  controller.openUserActivity({"a", {}}, {}, /*promptToUnlock=*/true, {});
  controller.openUserActivity({"b", {}}, {}, /*promptToUnlock=*/false, {});
  EXPECT_THAT(opened, ElementsAre("b"));
  device.setLocked(false);
  controller.openUserActivity({"c", {}}, {}, /*promptToUnlock=*/true, {});
  EXPECT_THAT(opened, ElementsAre("b", "a", "c"));
  EXPECT_EQ(device.lockState(), 0);
}

TEST(BusName, IsTheSameForTheSameFolder) {
  const TemporaryFolder folder;
  const std::string path = folder.path().string();
  std::filesystem::create_directory(path + "/real");
  std::filesystem::create_directory_symlink(path + "/real", path + "/link");
  const auto busName = [](const std::string& state) { return busNameFor(state, processEnvironment); };
  const std::string name = busName(path + "/real");
  EXPECT_THAT(name, testing::MatchesRegex("org\\.linewatch\\.LineWatch\\.state_[0-9a-f]+"));
  for (const char* same : {"/real/", "/./real", "/link", "/link/../real//"})
    EXPECT_EQ(busName(path + same), name) << same;
  EXPECT_NE(busName(path + "/none"), name);
  EXPECT_EQ(busName("/srv/state"), "org.linewatch.LineWatch.state_b4609a885934df11")
      << "other programs may rely on it";
  const auto home = [&path](const char* variable) {
    return variable == std::string_view("HOME") ? path.c_str() : nullptr;
  };
  const auto elsewhere = [&path](const char* variable) {
    return variable == std::string_view("XDG_DATA_HOME") ? path.c_str() : "/home";
  };
  EXPECT_EQ(busNameFor(std::nullopt, home), busName(path + "/.local/share/linewatch"));
  EXPECT_EQ(busNameFor(std::nullopt, elsewhere), busName(path + "/linewatch"));
  EXPECT_EQ(busNameFor(std::nullopt, [](const char*) { return nullptr; }), "");
}

}  // namespace
}  // namespace linewatch::desktop

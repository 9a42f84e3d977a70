#include "widget/transit_incidents_view_controller.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "list/transit_item_data_source_builder.h"
#include "platform/companion_application.h"
#include "platform/log.h"
#include "simulation/scenario/scenario_host.h"

namespace linewatch {
namespace {

using simulation::ScenarioHost;
using simulation::World;
using testing::ElementsAre;
using testing::IsEmpty;
namespace step = simulation::step;
using Answer = simulation::WorldService::Answer;
using Names = std::vector<std::string>;

World cityWithAStrike() {
  World world;
  world.incidents["strike"] = {.muid = 11, .title = "Strike", .start = Seconds(-60), .end = Seconds(600)};
  world.incidents["works"] = {.muid = 12, .title = "Works"};
  world.lines["A"] = {.muid = 1, .name = "A", .incidents = {"strike"}};
  world.lines["B"] = {.muid = 2, .name = "B", .incidents = {"works"}};
  world.favorites = {{.line = "A"}, {.line = "B"}};
  return world;
}

class ViewController : public testing::Test {
 protected:
  void start(World world = cityWithAStrike()) {
    host_ = nullptr;
    host_ = std::make_unique<ScenarioHost>(std::move(world));
    perform(step::Load{});
  }
  void startVisible(World world = cityWithAStrike()) {
    start(std::move(world));
    perform(step::Appear{});
    advance(1);
  }
  void perform(const simulation::Step& step) { EXPECT_EQ(host_->perform(step), std::nullopt); }
  void advance(double seconds) { perform(step::Advance{Seconds(seconds)}); }
  void set(std::function<void(World&)> change) { perform(step::Set{std::move(change)}); }
  void clear() { host_->platform().transcript().clear(); }
  /// The names of the transcript's events since the last clear, without the log.
  Names events() const { return host_->transcript().names(); }
  std::size_t count(std::string_view event) const { return host_->transcript().countOf(event); }
  Names updateResults() const {
    Names results;
    for (const auto& event : host_->transcript().eventsNamed("updateResult")) {
      results.push_back(event.field("id").description() + " " + event.field("result").description());
    }
    return results;
  }
  RVTransitIncidentsViewController& controller() { return *host_->controller(); }

  std::unique_ptr<ScenarioHost> host_;
};

TEST_F(ViewController, AppearsDisappearsAndAnswersInOrder) {
  start();
  EXPECT_THAT(events(), IsEmpty()) << "loading asks the host for nothing";
  EXPECT_FALSE(controller().isVisible());
  perform(step::Appear{.did = false});
  EXPECT_TRUE(controller().isVisible());
  EXPECT_THAT(events(), ElementsAre("largestAvailableDisplayMode"));
  EXPECT_EQ(controller().analyticsDelegate()->sessionStartDate(), std::nullopt);
  perform(step::Appear{.will = false});
  EXPECT_NE(controller().analyticsDelegate()->sessionStartDate(), std::nullopt);
  clear();
  advance(0.6);
  EXPECT_THAT(events(),
              ElementsAre("lookup", "timer", "timer", "shareSession", "shareSession", "shareSession",
                          "largestAvailableDisplayMode", "reload", "preferredContentSize"));
  clear();
  perform(step::Disappear{.did = false});
  EXPECT_THAT(events(), ElementsAre("preferencesSet"));
  EXPECT_FALSE(controller().isVisible());
  EXPECT_EQ(controller().updater(), nullptr);
  perform(step::Disappear{.will = false});
  EXPECT_THAT(events(), ElementsAre("preferencesSet", "analytics"));
  advance(86400);
  EXPECT_EQ(count("timerFired"), 0U) << "nothing goes on out of sight";
}

TEST_F(ViewController, FillsItsViewWithATable) {
  World world;
  world.host.compact = {300, 110};
  world.host.expanded = {320, 440};
  world.host.bounds = {500, 200};
  start(std::move(world));
  const ui::TableView& table = *controller().tableView();
  EXPECT_EQ(table.frame(), controller().view().bounds());
  EXPECT_EQ(table.superview(), &controller().view());
  EXPECT_EQ(controller().dataSource()->availableWidth(), 300) << "the compact widget's, not the view's";
}

TEST_F(ViewController, ReportsTheUpdateResultToTheHost) {
  struct Row {
    const char* name;
    Answer answer;
    const char* result;
    bool hasUpdater, hasList;
  };
  for (const Row& row :
       {Row{"lines", Answer::lines, "0", true, true}, Row{"an error", Answer::error, "2", false, true},
        Row{"neither", Answer::nothing, "0", false, false}}) {
    startVisible();
    EXPECT_NE(controller().updater(), nullptr);
    set([&](World& world) { world.service.answer = row.answer; });
    perform(step::Update{"u"});
    perform(step::Update{"joined"});
    advance(1);
    EXPECT_THAT(updateResults(),
                ElementsAre(std::string("u ") + row.result, std::string("joined ") + row.result))
        << row.name;
    EXPECT_EQ(controller().updater() != nullptr, row.hasUpdater) << row.name;
    EXPECT_EQ(controller().dataSource()->listItem() != nullptr, row.hasList) << row.name;
    clear();
    advance(3600);
    EXPECT_EQ(count("lookup") > 0, row.hasUpdater) << row.name << ": refreshes by itself";
  }
}

TEST_F(ViewController, AHostThatAsksAgainInItsHandlerJoinsTheSameFetch) {
  start();
  Names calls;
  controller().widgetPerformUpdateWithCompletionHandler([&](WidgetUpdateResult) {
    calls.emplace_back("first");
    controller().widgetPerformUpdateWithCompletionHandler(
        [&](WidgetUpdateResult) { calls.emplace_back("second"); });
    calls.emplace_back("has asked again");
  });
  advance(1);
  EXPECT_THAT(calls, ElementsAre("first", "second", "has asked again"));
  EXPECT_EQ(count("lookup"), 1U);
  EXPECT_EQ(controller().request(), nullptr);
}

TEST_F(ViewController, AResultWithItemsAndAnErrorIsAFailureToTheHostOnly) {
  startVisible();
  perform(step::Update{"u"});
  controller().request()->addHandler([](const std::shared_ptr<RVResult>& result) {
    result->setError(Error{"Transit", 7, {}});
  });
  perform(step::Update{"joined"});
  advance(1);
  EXPECT_THAT(updateResults(), ElementsAre("u 0", "joined 2"));
  perform(step::Disappear{});
  perform(step::Appear{.did = false});
  EXPECT_NE(controller().updater(), nullptr) << "the line items still have dates";
}

TEST_F(ViewController, KeepsTheListCurrentWhileItIsVisible) {
  startVisible();
  EXPECT_EQ(controller().dataSource()->listItem()->expandedItems()->size(), 2U);
  const auto recorded = [this] { return *controller().analyticsDelegate()->analyticsData(); };
  EXPECT_EQ(recorded().transitIncidents.size(), 2U);
  clear();
  advance(600);
  EXPECT_EQ(count("lookup"), 0U) << "an incident's end needs no fetch";
  EXPECT_EQ(recorded().transitIncidents.size(), 4U) << "in its last moment the strike is shown still";
  const auto updater = controller().updater();
  advance(1200);
  EXPECT_EQ(count("lookup"), 1U) << "the refresh does";
  EXPECT_EQ(controller().dataSource()->listItem()->expandedItems()->size(), 2U) << "works and good service";
  EXPECT_NE(controller().updater(), updater) << "a new one for each result";

  perform(step::Disappear{});
  clear();
  controller().transitIncidentUpdaterDateExpired(*updater, World().start);
  controller().transitIncidentUpdaterNeedsRefresh(*updater);
  advance(10);
  EXPECT_THAT(events(), IsEmpty()) << "late answers are ignored";
  perform(step::Appear{});
  EXPECT_NE(controller().updater(), nullptr) << "from the last result, before the fetch has ended";
}

TEST_F(ViewController, TheRowLimitFollowsTheSizesOfTheHost) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct Row {
    double compact, expanded;
    std::uint64_t limit;
  };
  for (const Row& row : {
           Row{110, 440, 4},
           Row{110, 300, 2},
           Row{110, 110, 1},
           Row{110, 100, kNoRowLimit},
           Row{110, 0, kNoRowLimit},
           Row{110, -440, kNoRowLimit},
           Row{0, 440, kNoRowLimit},
           Row{-110, 440, kNoRowLimit},
           Row{kNan, 440, kNoRowLimit},
           Row{110, kNan, kNoRowLimit},
           Row{110, kInfinity, kNoRowLimit},
           Row{1e-300, 1e300, kNoRowLimit},
           Row{1, 1e15, 1000000000000000},
       }) {
    World world;
    world.host.compact.height = row.compact;
    world.host.expanded.height = row.expanded;
    start(std::move(world));
    EXPECT_EQ(controller().dataSource()->maxNumberOfRows(), row.limit) << row.compact << " " << row.expanded;
    perform(step::Appear{});
    if (!std::isnan(row.compact)) {
      EXPECT_EQ(controller().dataSource()->rowHeight(), row.compact);
    }
  }
}

TEST_F(ViewController, WithoutAHostShowsTheListAllTheSame) {
  World world = cityWithAStrike();
  world.host.hosted = false;
  world.host.bounds = {500, 300};
  startVisible(std::move(world));
  EXPECT_EQ(controller().dataSource()->availableWidth(), 500);
  EXPECT_EQ(controller().dataSource()->maxNumberOfRows(), kNoRowLimit);
  EXPECT_EQ(controller().dataSource()->rowHeight(), 0);
  EXPECT_EQ(count("largestAvailableDisplayMode"), 0U);
  EXPECT_EQ(count("reload"), 2U) << "the new height, and the list";
  EXPECT_EQ(controller().preferredContentSize(), (Size{0, 0}));
  perform(step::DisplayMode{WidgetDisplayMode::expanded});
  EXPECT_FALSE(controller().dataSource()->isExpanded()) << "there is nobody to say so";
}

TEST_F(ViewController, FollowsTheModeOfTheHostNotTheArgument) {
  World world = cityWithAStrike();
  world.host.expanded.width = 400;
  startVisible(std::move(world));
  clear();
  perform(step::DisplayMode{WidgetDisplayMode::expanded});
  EXPECT_THAT(events(),
              ElementsAre("usage", "largestAvailableDisplayMode", "reload", "preferredContentSize"));
  EXPECT_EQ(controller().preferredContentSize(), (Size{400, 220}));
  clear();
  controller().widgetActiveDisplayModeDidChange(WidgetDisplayMode::compact, {});
  EXPECT_THAT(events(), ElementsAre("usage")) << "the context still says expanded";
  EXPECT_EQ(host_->transcript().eventsNamed("usage")[0].field("action"), Value("SHOW_LESS"))
      << "recorded with the mode as given";
  EXPECT_TRUE(controller().dataSource()->isExpanded());
}

TEST_F(ViewController, ANewWidthReloadsTheRowsOnlyWhenTheirArtworkChanges) {
  World world = cityWithAStrike();
  world.lines["B"].incidents = {};
  world.lines["A"].alternateArtwork.emplace().shieldDataSource = ShieldDataSource{.shieldText = "A"};
  world.lines["A"].alternateArtwork->intrinsicWidth = 100;
  startVisible(std::move(world));
  clear();
  perform(step::Resize{400, 110});
  EXPECT_THAT(events(), IsEmpty());
  EXPECT_EQ(controller().dataSource()->availableWidth(), 400);
  EXPECT_EQ(controller().tableView()->frame().width, 400);
  perform(step::Resize{300, 110});
  EXPECT_THAT(events(), ElementsAre("largestAvailableDisplayMode", "reload", "preferredContentSize"));
}

TEST_F(ViewController, OpensTheTappedRowAndRecordsOnlyASuccess) {
  startVisible();
  perform(step::DisplayMode{WidgetDisplayMode::expanded});
  set([](World& world) { world.opens = false; });
  clear();
  perform(step::Tap{1});
  advance(1);
  EXPECT_THAT(events(), ElementsAre("openUserActivity"));
  set([](World& world) { world.opens = true; });
  perform(step::Tap{1});
  EXPECT_EQ(count("analytics"), 0U) << "the outcome comes later";
  advance(1);
  EXPECT_THAT(events(), ElementsAre("openUserActivity", "openUserActivity", "usage", "analytics"));
  clear();
  perform(step::Disappear{});
  EXPECT_THAT(events(), ElementsAre("preferencesSet")) << "the session has ended with the tap";
  EXPECT_EQ(host_->perform(step::Tap{9}), "there is no row 9 to tap");
}

TEST_F(ViewController, PurgesTheArtworkWhenMemoryIsShort) {
  start();
  clear();
  perform(step::MemoryWarning{});
  EXPECT_THAT(events(), ElementsAre("cachePurged"));
}

TEST_F(ViewController, LeavesUserDataOutOfCollectedLogs) {
  Names lines;
  host_ = std::make_unique<ScenarioHost>(cityWithAStrike());
  host_->platform().log().setListener([&](const LogMessage& message) {
    EXPECT_EQ(message.category, "LineWatch");
    EXPECT_EQ(message.level, LogLevel::debug);
    lines.push_back(message.text(/*redacted=*/true));
  });
  perform(step::Load{});
  perform(step::Appear{});
  advance(601);
  set([](World& world) { world.service.answer = Answer::error; });
  perform(step::Update{"u"});
  advance(1);
  perform(step::Disappear{});
  perform(step::Load{});
  set([](World& world) { world.archives = false; });
  perform(step::Disappear{});
  auto& saved = host_->platform().preferences().suite(kCompanionAppGroupSuite).begin()->second;
  Bytes damaged = *saved.get<Bytes>();
  damaged.pop_back();
  saved = std::move(damaged);
  perform(step::Load{});
  EXPECT_THAT(
      lines,
      ElementsAre(
          "No view model found in GroupSettings (key: <private>)", "Received 2 favorites from container.",
          "Issuing favorite lines lookup request for Muids: <private>.", "Received 2 line items.",
          "Incident updater calculated update dates for incidents: <private>",
          "Scheduling incident updater  auto refresh update with interval 1800.00",
          "Incident updater next update date was reached: <private>.", "Received 2 favorites from container.",
          "Issuing favorite lines lookup request for Muids: <private>.", "Received error: <private>.",
          "Saving view model to GroupSetting (key: <private>) : <private>",
          "View model loaded from GroupSettings (key: <private>): <private>",
          "Unable to cache view model to disk because it couldnt be converted to Blob: <private>",
          "Error parsing ViewModel data loaded from GroupSettings, removing it (key: <private>): <private> - "
          "error: <private>"));
}

TEST_F(ViewController, FetchingOnAnotherThreadEndsTheProcess) {
  start();
  host_->platform().mainLoop().runElsewhere([this] {
    EXPECT_DEATH(controller().widgetPerformUpdateWithCompletionHandler(nullptr), "another thread");
  });
  advance(0);
}

}  // namespace
}  // namespace linewatch

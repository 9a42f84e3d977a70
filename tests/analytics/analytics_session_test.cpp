#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analytics/transit_incidents_analytics_delegate.h"
#include "platform/transit_records.h"
#include "simulation/forwarding_platform.h"
#include "simulation/platform_test.h"

namespace linewatch {
namespace {

using simulation::World;
using testing::ElementsAre;
using testing::IsEmpty;

/// A simulated platform that notes the arguments which the transcript leaves out.
class WatchedPlatform final : public ForwardingPlatform, public UsageRecorder, public AnalyticsLogger {
 public:
  UsageRecorder& usageRecorder() override { return *this; }
  AnalyticsLogger& analyticsLogger() override { return *this; }
  void captureUserAction(std::string_view action, std::int64_t,
                         const std::optional<std::string>& eventValue) override {
    calls.push_back(std::string(action) + ", value " + eventValue.value_or("none"));
  }
  void captureEvent(const WidgetInteractionEvent&, const UserSessionSnapshot& session) override {
    calls.push_back("event of " + session.sessionIdentifier);
    if (onEvent) onEvent();
  }

  std::vector<std::string> calls;
  std::function<void()> onEvent;
};

class AnalyticsSession : public PlatformTest {
 protected:
  void start(World world) {
    install(std::move(world));
    controller_ = platform_->makeViewController();
    analytics_ = std::make_unique<RVTransitIncidentsAnalyticsDelegate>(controller_);
  }
  void SetUp() override { start({}); }

  void show(WidgetDisplayMode mode) {
    platform_->changeWorld([mode](World& world) { world.host.activeMode = mode; });
  }
  /// Records a list that shows incidents 1 to `count`, each of the line with the number `muid`.
  void record(std::size_t count, std::uint64_t muid = 7, bool hasLines = true) {
    const auto line =
        std::make_shared<const TransitLineRecord>(TransitLineFields{.muid = muid}, TransitIncidents{});
    TransitIncidents incidents;
    IncidentsToLineMapping mapping;
    for (std::uint64_t i = 1; i <= count; ++i) {
      incidents.push_back(std::make_shared<const TransitIncidentRecord>(
          TransitIncidentFields{.muid = i, .title = "I" + std::to_string(i)}));
      mapping.emplace(i, line.get());
    }
    analytics_->recordInfoForLines(hasLines ? TransitLineItems{line} : TransitLineItems{}, incidents,
                                   mapping);
  }
  std::vector<std::string> actions() const {
    std::vector<std::string> all;
    for (const auto& event : platform_->transcript().eventsNamed("usage")) {
      EXPECT_EQ(event.field("target"), Value(706));
      all.push_back(event.field("action").description());
    }
    return all;
  }
  std::vector<simulation::TranscriptEvent> events() const {
    return platform_->transcript().eventsNamed("analytics");
  }

  std::shared_ptr<ui::ViewController> controller_;
  std::unique_ptr<RVTransitIncidentsAnalyticsDelegate> analytics_;
};

TEST_F(AnalyticsSession, LogsOneEventEachTimeTheWidgetIsShown) {
  platform_->advance(2);
  analytics_->startSessionIfNeeded();
  record(2, ~std::uint64_t{0});
  platform_->advance(3.5);
  analytics_->recordCloseSessionSwiping();
  analytics_->recordCloseSessionSwiping();
  ASSERT_EQ(events().size(), 1U);
  const Array incidents = {
      Dictionary{{"transitLineMuid", "18446744073709551615"}, {"transitIncidentTitle", "I1"}},
      Dictionary{{"transitLineMuid", "18446744073709551615"}, {"transitIncidentTitle", "I2"}}};
  EXPECT_EQ(events()[0].fields, (Dictionary{{"interactionType", 2},
                                            {"endState", 2},
                                            {"record", Dictionary{{"initiallyExpanded", false},
                                                                  {"transitMessageType", 4},
                                                                  {"transitIncidents", incidents}}},
                                            {"wasLocked", false},
                                            {"start", 2.0},
                                            {"duration", 3.5}}));
  EXPECT_FALSE(analytics_->sessionStartDate());
  EXPECT_EQ(analytics_->analyticsData(), nullptr);
  EXPECT_THAT(actions(), IsEmpty());
}

TEST_F(AnalyticsSession, AnIncidentWithoutATitleHasNoneInTheRecord) {
  analytics_->startSessionIfNeeded();
  const auto untitled = std::make_shared<const TransitIncidentRecord>(
      TransitIncidentFields{.muid = 1, .summary = "Few trains"});
  analytics_->recordInfoForLines({nullptr}, {untitled}, {});
  analytics_->recordCloseSessionSwiping();
  EXPECT_EQ(events().at(0).field("record").get<Dictionary>()->at("transitIncidents"),
            Value(Array{Dictionary{{"transitLineMuid", "0"}}}));
}

TEST_F(AnalyticsSession, WithoutASessionOnlyAnOpenIsRecorded) {
  analytics_->recordWidgetChangeDisplayMode(WidgetDisplayMode::expanded);
  record(1);
  analytics_->recordCloseSessionSwiping();
  EXPECT_THAT(platform_->transcript().names(), IsEmpty());
  analytics_->recordOpenItemAtIndexPath({.row = 1});
  EXPECT_THAT(platform_->transcript().names(), ElementsAre("usage"));
  EXPECT_THAT(actions(), ElementsAre("TAP_WIDGET_ITEM"));
}

TEST_F(AnalyticsSession, RecordsWhetherItWasExpandedAtFirstAndEver) {
  show(WidgetDisplayMode::expanded);
  analytics_->startSessionIfNeeded();
  EXPECT_EQ(analytics_->analyticsData()->initiallyExpanded, true);
  EXPECT_EQ(analytics_->analyticsData()->everExpanded, true);

  show(WidgetDisplayMode::compact);
  analytics_->startSessionIfNeeded();
  EXPECT_EQ(analytics_->analyticsData()->initiallyExpanded, false);
  EXPECT_EQ(analytics_->analyticsData()->everExpanded, std::nullopt);
  analytics_->recordWidgetChangeDisplayMode(WidgetDisplayMode::compact);
  EXPECT_EQ(analytics_->analyticsData()->everExpanded, std::nullopt);
  analytics_->recordWidgetChangeDisplayMode(WidgetDisplayMode::expanded);
  EXPECT_EQ(analytics_->analyticsData()->initiallyExpanded, false);
  EXPECT_EQ(analytics_->analyticsData()->everExpanded, true);
  EXPECT_THAT(actions(), ElementsAre("SHOW_LESS", "SHOW_MORE"));

  show(WidgetDisplayMode::expanded);
  controller_ = nullptr;
  analytics_->startSessionIfNeeded();
  EXPECT_EQ(analytics_->analyticsData()->initiallyExpanded, false)
      << "a controller that is gone counts as compact";
}

TEST_F(AnalyticsSession, ASecondStartKeepsTheDateAndClearsTheRecord) {
  analytics_->startSessionIfNeeded();
  record(3);
  platform_->advance(1);
  analytics_->startSessionIfNeeded();
  EXPECT_THAT(analytics_->analyticsData()->transitIncidents, IsEmpty());
  EXPECT_EQ(analytics_->sessionStartDate(), platform_->world().start);
}

TEST_F(AnalyticsSession, TheMessageTypeIsThatOfTheLatestList) {
  analytics_->startSessionIfNeeded();
  struct Row {
    std::size_t incidents;
    bool hasLines;
    std::int64_t type;
  };
  std::size_t items = 0;
  for (const Row& row : {Row{0, false, 1}, Row{0, true, 2}, Row{1, true, 3}, Row{2, true, 4}, Row{5, true, 4},
                         Row{0, true, 2}}) {
    record(row.incidents, 7, row.hasLines);
    items += row.incidents;
    EXPECT_EQ(analytics_->analyticsData()->transitMessageType, row.type);
    EXPECT_EQ(analytics_->analyticsData()->transitIncidents.size(), items) << "items are only added";
  }
}

TEST_F(AnalyticsSession, AnOpenEndsItWithTheRowsNumber) {
  struct Row {
    WidgetDisplayMode mode;
    std::size_t row;
    std::int64_t index;
  };
  using enum WidgetDisplayMode;
  for (const Row& row : {Row{compact, 0, 0}, Row{expanded, 0, 1}, Row{expanded, 1, 1}, Row{expanded, 3, 3},
                         Row{compact, 3, 3}}) {
    start({});
    show(row.mode);
    analytics_->startSessionIfNeeded();
    analytics_->recordOpenItemAtIndexPath({.row = row.row});
    analytics_->recordCloseSessionSwiping();
    EXPECT_THAT(actions(), ElementsAre("TAP_WIDGET_ITEM"));
    ASSERT_EQ(events().size(), 1U);
    EXPECT_EQ(events()[0].field("endState"), Value(1));
    EXPECT_EQ(events()[0].field("record").get<Dictionary>()->at("tappedItemIndex"), Value(row.index));
  }
}

TEST_F(AnalyticsSession, PassesNoValueWithActionsAndTheSessionWithTheEvent) {
  const auto watched = std::make_shared<WatchedPlatform>();
  installPlatform(watched);
  analytics_->startSessionIfNeeded();
  analytics_->recordWidgetChangeDisplayMode(WidgetDisplayMode::expanded);
  analytics_->recordWidgetChangeDisplayMode(WidgetDisplayMode::compact);
  watched->onEvent = [&] {
    EXPECT_NE(analytics_->sessionStartDate(), std::nullopt) << "the session is cleared last";
    EXPECT_NE(analytics_->analyticsData(), nullptr);
  };
  analytics_->recordOpenItemAtIndexPath({.row = 1});
  EXPECT_THAT(watched->calls, ElementsAre("SHOW_MORE, value none", "SHOW_LESS, value none",
                                          "TAP_WIDGET_ITEM, value none", "event of simulated session"));
  EXPECT_EQ(analytics_->sessionStartDate(), std::nullopt);
}

TEST_F(AnalyticsSession, TellsWhetherTheDeviceWasLocked) {
  for (const int state : {0, 1, 2, 3, -1}) {
    World world;
    world.lockState = state;
    start(world);
    analytics_->startSessionIfNeeded();
    analytics_->recordCloseSessionSwiping();
    EXPECT_EQ(events().at(0).field("wasLocked"), Value(state == 1 || state == 2)) << state;
  }
}

}  // namespace
}  // namespace linewatch

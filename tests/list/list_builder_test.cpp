#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "activity/line_activity.h"
#include "list/quiet_platform.h"
#include "list/transit_incidents_data_source_builder.h"
#include "list/transit_item_data_source_builder.h"
#include "platform/transit_records.h"
#include "simulation/platform_test.h"
#include "wire/compression_memo.h"

namespace linewatch {
namespace {

using simulation::World;
using testing::ElementsAre;
using testing::IsEmpty;

SharedArtwork shield(const std::string& text) {
  return std::make_shared<const TransitArtworkDataSource>(
      TransitArtworkDataSource{.shieldDataSource = ShieldDataSource{.shieldText = text}});
}

SharedIncident incident(std::uint64_t muid, OptionalText title, OptionalText text = "Text") {
  return std::make_shared<const TransitIncidentRecord>(
      TransitIncidentFields{.muid = muid, .title = std::move(title), .summary = std::move(text)});
}

struct LineSketch {
  std::string name;
  TransitIncidents incidents;
  SharedArtwork artwork = nullptr;
};

std::shared_ptr<const TransitLineItems> lines(const std::vector<LineSketch>& sketches) {
  auto items = std::make_shared<TransitLineItems>();
  for (const LineSketch& sketch : sketches) {
    items->push_back(std::make_shared<const TransitLineRecord>(
        TransitLineFields{.muid = items->size() + 1, .name = sketch.name, .alternateArtwork = sketch.artwork},
        sketch.incidents));
  }
  return items;
}

std::string text(const SharedTransitItem& item) {
  return item->primaryText().value_or("-") + " / " + item->secondaryText().value_or("-");
}

std::vector<std::string> texts(const TransitItems& items) {
  std::vector<std::string> all;
  for (const SharedTransitItem& item : items) all.push_back(text(item));
  return all;
}

std::string summaryText(const RVTransitListItem& list) {
  struct {
    std::string operator()(std::monostate) const { return "none"; }
    std::string operator()(const SharedTransitItem& item) const { return text(item); }
    std::string operator()(const std::shared_ptr<const RVTransitSummaryItem>& item) const {
      return "summary " + item->primaryText().value_or("-");
    }
  } visitor;
  return std::visit(visitor, list.summaryItem());
}

const RVTransitSummaryItem& summaryOf(const RVTransitListItem& list) {
  return *std::get<std::shared_ptr<const RVTransitSummaryItem>>(list.summaryItem());
}

class MemoPlatform final : public ForwardingPlatform {
 public:
  CompressionMemo& compressor() override { return memo_; }
  CountingCompressor slow;

 private:
  CompressionMemo memo_{slow};
};

class ListBuilder : public PlatformTest {
 protected:
  std::shared_ptr<const RVTransitListItem> build(const std::vector<LineSketch>& sketches,
                                                 std::uint64_t limit = 0) {
    return RVTransitDataSourceBuilderForResult(RVResult(lines(sketches)), limit, nullptr, analytics_)
        ->listItem();
  }
  std::vector<std::string> rows(const std::vector<LineSketch>& sketches, std::uint64_t limit = 0) {
    return texts(*build(sketches, limit)->expandedItems());
  }

  std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics_;
};

TEST_F(ListBuilder, ShowsIncidentsInForceBothEndsIncluded) {
  const Date now = platform_->mainLoop().now();
  const auto dated = [](std::uint64_t muid, std::optional<Date> start, std::optional<Date> end) {
    return std::make_shared<const TransitIncidentRecord>(TransitIncidentFields{
        .muid = muid, .startDate = start, .endDate = end, .title = std::to_string(muid)});
  };
  const Seconds second(1);
  EXPECT_THAT(rows({{"A",
                     {dated(1, now, {}), dated(2, {}, now), dated(3, now + second, {}),
                      dated(4, {}, now - second), dated(5, now - second, now + second), dated(6, {}, {})}}}),
              ElementsAre("1 / -", "2 / -", "5 / -", "6 / -"));
}

TEST_F(ListBuilder, BuildsOnceWithItsFilterAtTheFirstCall) {
  class Nothing final : public RVTransitIncidentFilter {
    bool shouldDisplayIncident(const TransitIncident&) const override { return false; }
  };
  RVTransitIncidentsDataSourceBuilder builder(lines({{"A", {incident(1, "I1")}}}), 0, nullptr, nullptr);
  EXPECT_EQ(builder.maxNumberOfItems(), ~std::uint64_t{0});
  EXPECT_EQ(builder.incidentFilter(), builder.incidentFilter()) << "made on first use and kept";
  builder.setIncidentFilter(std::make_shared<Nothing>());
  const auto list = builder.listItem();
  EXPECT_EQ(summaryText(*list), "LineWatch_GoodService_Title / LineWatch_GoodService_SecondaryText_Singular");
  builder.setIncidentFilter(nullptr);
  EXPECT_EQ(builder.listItem(), list);
}

TEST_F(ListBuilder, SummaryAndOverflowArchiveTheirIncidentsInPlainMode) {
  const auto quiet = std::make_shared<QuietPlatform>();
  installPlatform(quiet);
  build({{"A", {incident(1, "I1"), incident(2, "I2")}}}, 1);
  EXPECT_EQ(quiet->keyedArchiver().plainCount, 2U) << "the summary and the overflow row";
  EXPECT_EQ(quiet->keyedArchiver().secureCount, 0U);
}

TEST_F(ListBuilder, AnErrorWinsAndItsTextFollowsTheDiagnosis) {
  struct Row {
    ConnectionFailureDiagnosis diagnosis;
    bool wapi;
    const char* expected;
  };
  using enum ConnectionFailureDiagnosis;
  for (const Row& row : {
           Row{airplaneMode, true, "LineWatchLoadingError_AirplaneMode_WLAN"},
           Row{airplaneMode, false, "LineWatchLoadingError_AirplaneMode_WIFI"},
           Row{noInternetConnection, false, "LineWatchLoadingError_No_Internet"},
           Row{other, false, "LineWatchLoadingError_Uknown"},
           Row{unknown, true, "LineWatchLoadingError_Uknown"},
       }) {
    World world;
    world.diagnosis = row.diagnosis;
    world.capabilities["wapi"] = row.wapi;
    install(world);
    const RVResult both(lines({{"A", {}}}), Error{"Transit", 7, {}});
    const auto list = RVTransitDataSourceBuilderForResult(both, 0, nullptr, nullptr)->listItem();
    EXPECT_EQ(summaryText(*list), std::string("LineWatchLoadingError_Title / ") + row.expected);
    EXPECT_THAT(*list->expandedItems(), IsEmpty());
    EXPECT_EQ(std::get<SharedTransitItem>(list->summaryItem())->openable(), nullptr);
  }
  EXPECT_EQ(RVTransitDataSourceBuilderForResult(RVResult(nullptr, std::nullopt), 0, nullptr, nullptr),
            nullptr);
}

TEST_F(ListBuilder, AnErrorListIsBuiltAtTheFirstCallAndKept) {
  const auto builder =
      RVTransitDataSourceBuilderForResult(RVResult(Error{"Transit", 7, {}}), 0, nullptr, nullptr);
  platform_->changeWorld([](World& world) { world.diagnosis = ConnectionFailureDiagnosis::airplaneMode; });
  const auto list = builder->listItem();
  EXPECT_EQ(summaryText(*list), "LineWatchLoadingError_Title / LineWatchLoadingError_AirplaneMode_WIFI");
  platform_->changeWorld([](World& world) { world.diagnosis = ConnectionFailureDiagnosis::other; });
  EXPECT_EQ(builder->listItem(), list);
}

TEST_F(ListBuilder, RecordsEveryShownIncidentBeforeTheRowLimit) {
  const auto controller = platform_->makeViewController();
  analytics_ = std::make_shared<RVTransitIncidentsAnalyticsDelegate>(controller);
  const std::vector<LineSketch> sketches = {{"A", {incident(1, "I1"), incident(2, "I2"), incident(3, "I3")}}};
  build(sketches, 1);
  EXPECT_EQ(analytics_->analyticsData(), nullptr) << "no session has started";
  analytics_->startSessionIfNeeded();
  build(sketches, 1);
  EXPECT_EQ(analytics_->analyticsData()->transitMessageType, 4);
  EXPECT_THAT(analytics_->analyticsData()->transitIncidents,
              ElementsAre(IncidentAnalyticsItem{"1", "I1"}, IncidentAnalyticsItem{"1", "I2"},
                          IncidentAnalyticsItem{"1", "I3"}));
  build({});
  EXPECT_EQ(analytics_->analyticsData()->transitMessageType, 1);
  EXPECT_EQ(analytics_->analyticsData()->transitIncidents.size(), 3U);
}

TEST_F(ListBuilder, CompressesALinesRecordOnceABuild) {
  const auto quiet = std::make_shared<QuietPlatform>();
  installPlatform(quiet);
  const auto shared = incident(1, "I1");
  const std::vector<LineSketch> sketches = {{"A", {shared, incident(2, "I2"), incident(3, "I3")}},
                                            {"B", {shared, incident(4, "I4")}},
                                            {"C", {shared}},
                                            {"D", {}}};
  for (std::size_t builds = 1; builds <= 2; ++builds) {
    const auto list = build(sketches);
    EXPECT_EQ(list->expandedItems()->size(), 5U);
    EXPECT_EQ(quiet->compressor().count, 2 * builds) << "C and D have no row of their own";
    EXPECT_TRUE(list->expandedItems()->at(0)->openable()->isEqual(*list->expandedItems()->at(2)->openable()));
  }
}

TEST_F(ListBuilder, CompressesNothingWhenTheRecordsOfTheRowsAreRemembered) {
  const auto memo = std::make_shared<MemoPlatform>();
  installPlatform(memo);
  const auto shared = incident(1, "I1");
  const LineSketch unchanged{"B", {shared, incident(4, "I4")}}, withoutRow{"C", {shared}};
  const auto prepareAndBuild = [&](const LineSketch& first) {
    memo->compressor().remember(activityRecordsOfRows(*lines({first, unchanged, withoutRow})));
    const std::size_t prepared = memo->slow.count;
    build({first, unchanged, withoutRow});
    EXPECT_EQ(memo->slow.count, prepared);
    return prepared;
  };
  EXPECT_EQ(prepareAndBuild({"A", {shared, incident(2, "I2")}}), 2U) << "C has no row of its own";
  EXPECT_EQ(prepareAndBuild({"A", {shared, incident(2, "Other")}}), 3U) << "only A has changed";
}

TEST_F(ListBuilder, EachRowSharesTheSessionAndNeverResetsIt) {
  const auto quiet = std::make_shared<QuietPlatform>();
  installPlatform(quiet);
  build({{"A", {incident(1, "I1"), incident(2, "I2"), incident(3, "I3")}}, {"B", {}}});
  EXPECT_EQ(quiet->userSession().shareCount, 5U) << "three rows, the summary and the good-service row";
  EXPECT_EQ(quiet->userSession().resetCount, 0U);
}

TEST_F(ListBuilder, RewritesTheFirstOfTwoRowsThatBecomeEqual) {
  // Rewriting the first row makes it equal to the second. Rewriting the second then changes the first again.
  const auto twice = incident(1, "Strike", "T");
  const auto worded = incident(2, "Strike", "LineWatch_Single_Line_Prepended_Incident_Text(A|T)");
  const auto system = std::make_shared<const TransitSystem>(TransitSystem{.artwork = shield("M")});
  const auto line = std::make_shared<const TransitLineRecord>(
      TransitLineFields{.muid = 1, .name = "A", .system = system}, TransitIncidents{twice, twice, worded});
  const auto items = std::make_shared<const TransitLineItems>(TransitLineItems{line});
  const auto list = RVTransitDataSourceBuilderForResult(RVResult(items), 0, nullptr, nullptr)->listItem();
  EXPECT_THAT(texts(*list->expandedItems()),
              ElementsAre("Strike / LineWatch_Single_Line_Prepended_Incident_Text(A|"
                          "LineWatch_Single_Line_Prepended_Incident_Text(A|T))",
                          "Strike / LineWatch_Single_Line_Prepended_Incident_Text(A|T)"));
}

TEST_F(ListBuilder, ItemsWithTwoEqualTextsHaveDistinctTableHashes) {
  std::set<std::size_t> hashes;
  for (int number = 0; number < 1000; ++number) {
    const std::string text = "Line " + std::to_string(number);
    const auto item = std::make_shared<const RVTransitItem>(text, text, nullptr, true, nullptr);
    EXPECT_EQ(item->hash(), 2654435761U);
    hashes.insert(TransitItemHash()(item.get()));
  }
  EXPECT_EQ(hashes.size(), 1000U);
}

TEST_F(ListBuilder, ARowOpensNothingWhenItsRecordCannotBeCompressed) {
  World world;
  world.compresses = false;
  install(world);
  const auto list = build({{"A", {incident(1, "I1"), incident(2, "I2")}}});
  EXPECT_EQ(list->expandedItems()->at(0)->openable(), nullptr);
  EXPECT_EQ(list->expandedItems()->at(1)->openable(), nullptr);
  EXPECT_NE(summaryOf(*list).userActivityData(), nullptr);
  EXPECT_EQ(platform_->compressor().callCount(), 1U) << "tried once a line";
}

}  // namespace
}  // namespace linewatch

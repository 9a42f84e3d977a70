#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "activity/openable_url.h"
#include "list/quiet_platform.h"
#include "list/transit_incidents_data_source_builder.h"
#include "list/transit_item_data_source_builder.h"
#include "platform/transit_records.h"
#include "simulation/simulated_platform.h"

namespace linewatch {
namespace {

using simulation::SimulatedPlatform;
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
  SharedArtwork systemArtwork = nullptr;
  std::string systemName = {};
};

std::shared_ptr<const TransitLineItems> lines(const std::vector<LineSketch>& sketches) {
  auto items = std::make_shared<TransitLineItems>();
  for (const LineSketch& sketch : sketches) {
    TransitLineFields fields{
        .muid = items->size() + 1, .name = sketch.name, .alternateArtwork = sketch.artwork};
    if (sketch.systemArtwork || !sketch.systemName.empty()) {
      fields.system = std::make_shared<const TransitSystem>(
          TransitSystem{.name = sketch.systemName, .artwork = sketch.systemArtwork});
    }
    items->push_back(std::make_shared<const TransitLineRecord>(std::move(fields), sketch.incidents));
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

class ListBuilder : public testing::Test {
 protected:
  void install(World world = {}) {
    platform_ = SimulatedPlatform::make(std::move(world));
    installPlatform(platform_);
  }
  void SetUp() override { install(); }
  void TearDown() override { installPlatform(nullptr); }

  std::shared_ptr<const RVTransitListItem> build(const std::vector<LineSketch>& sketches,
                                                 std::uint64_t limit = 0) {
    return RVTransitDataSourceBuilderForResult(RVResult(lines(sketches)), limit, nullptr, analytics_)
        ->listItem();
  }
  std::vector<std::string> rows(const std::vector<LineSketch>& sketches, std::uint64_t limit = 0) {
    return texts(build(sketches, limit)->expandedItems());
  }

  std::shared_ptr<SimulatedPlatform> platform_;
  std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics_;
};

constexpr const char* kGoodService1 =
    "LineWatch_GoodService_Title / LineWatch_GoodService_Overflow_SecondaryText(1)";
constexpr const char* kGoodService2 =
    "LineWatch_GoodService_Title / LineWatch_GoodService_Overflow_SecondaryText(2)";

std::string overflow(int incidents, int lineCount) {
  return "LineWatch_advisory_overflow_title(" + std::to_string(incidents) +
         ") / LineWatch_AdvisoriesOverflow_SecondaryText(" + std::to_string(lineCount) + ")";
}

TEST_F(ListBuilder, ListsWithoutIncidentRowsShowOnlyTheirSummary) {
  const auto none = build({});
  EXPECT_EQ(summaryText(*none), "LineWatch_NoFavorite_Title / LineWatch_NoFavorite_SecondaryText");
  const auto& row = std::get<SharedTransitItem>(none->summaryItem());
  EXPECT_TRUE(row->openable()->isEqual(OpenableURL(URL{"rova://?t=r"})));
  EXPECT_FALSE(row->displayArtwork());
  EXPECT_THAT(none->expandedItems(), IsEmpty());

  EXPECT_EQ(summaryText(*build({{"A", {}}})),
            "LineWatch_GoodService_Title / LineWatch_GoodService_SecondaryText_Singular");
  const auto two = build({{"A", {}}, {"B", {incident(1, std::nullopt, "")}}});
  EXPECT_EQ(summaryText(*two), "LineWatch_GoodService_Title / LineWatch_GoodService_SecondaryText_Plural(2)");
  EXPECT_THAT(two->expandedItems(), IsEmpty());
}

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

TEST_F(ListBuilder, BuildsOnceWithTheFilterThatItHasThen) {
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

TEST_F(ListBuilder, OneRowExpandsOnlyBesideGoodService) {
  const auto alone = build({{"A", {incident(1, "Strike")}}});
  EXPECT_EQ(summaryText(*alone), "Strike / Text");
  EXPECT_THAT(alone->expandedItems(), IsEmpty());
  EXPECT_THAT(rows({{"A", {incident(1, "Strike")}}, {"B", {}}, {"C", {}}}, 1),
              ElementsAre("Strike / Text", kGoodService2));
}

TEST_F(ListBuilder, FoldsRowsBeyondTheLimit) {
  std::vector<LineSketch> busy;
  for (std::uint64_t i = 1; i <= 4; ++i) {
    busy.push_back({"L" + std::to_string(i), {incident(i, "I" + std::to_string(i))}});
  }
  auto withGood = busy;
  withGood.push_back({"G", {}});
  struct Row {
    const char* name;
    const std::vector<LineSketch>* lines;
    std::uint64_t limit;
    std::vector<std::string> expected;
  };
  const std::vector<std::string> all = {"I1 / Text", "I2 / Text", "I3 / Text", "I4 / Text"};
  for (const Row& row : {
           Row{"no limit", &busy, 0, all},
           Row{"just fits", &busy, 4, all},
           Row{"one too many", &busy, 3, {"I1 / Text", "I2 / Text", overflow(2, 2)}},
           Row{"limit 1", &busy, 1, {overflow(4, 4)}},
           Row{"good service stays last", &withGood, 3, {"I1 / Text", overflow(3, 3), kGoodService1}},
           Row{"only overflow and good service", &withGood, 2, {overflow(4, 4), kGoodService1}},
           Row{"limit 1 takes good service too", &withGood, 1, {overflow(4, 4)}},
       }) {
    EXPECT_EQ(rows(*row.lines, row.limit), row.expected) << row.name;
  }
}

TEST_F(ListBuilder, LinesThatShareAnIncidentAreNamedAndStillCountAsUnaffected) {
  const auto shared = incident(1, "Strike");
  const auto metro = shield("Metro");
  const std::vector<LineSketch> sketches = {{"A", {shared}, shield("A"), metro},
                                            {"B", {shared}, shield("B"), shield("Metro")},
                                            {"C", {incident(2, "Works")}}};
  const auto list = build(sketches);
  EXPECT_THAT(texts(list->expandedItems()),
              ElementsAre("Strike / LineWatch_2_Lines_Prepended_Incident_Text(A|B|Text)", "Works / Text",
                          kGoodService1));
  EXPECT_TRUE(list->expandedItems()[0]->artwork()->isEqual(
      RVConfiguredArtwork(std::make_shared<const SizedTransitArtwork>(metro, 3, nullptr), 1.0)));
  // The summary shows the artworks of all lines of a shared row; a line without any adds none.
  EXPECT_EQ(summaryOf(*list).primaryText(), "LineWatch_Summary_advisory_count(2)");
  EXPECT_EQ(summaryOf(*list).artworks()->size(), 2U);
}

TEST_F(ListBuilder, NamesEveryLineOnceInAnyNumber) {
  struct Row {
    const char* name;
    std::vector<LineSketch> lines;
    std::string expected;
  };
  const auto on = [](OptionalText incidentText, std::vector<LineSketch> sketches) {
    for (LineSketch& sketch : sketches) sketch.incidents = {incident(1, "Strike", incidentText)};
    return sketches;
  };
  const auto twice = incident(1, "Strike");
  for (const Row& row : {
           Row{"three", on("T", {{"A", {}}, {"B", {}}, {"C", {}}}),
               "LineWatch_N_Lines_Prepended_Incident_Text(A, B|C|T)"},
           Row{"four without a text", on({}, {{"A", {}}, {"B", {}}, {"C", {}}, {"D", {}}}),
               "LineWatch_N_Lines_Names_Concatenated(A, B, C|D)"},
           Row{"two without a text", on("", {{"A", {}}, {"B", {}}}), "LineWatch_2_Lines_Concatenated(A|B)"},
           Row{"equal names", on("T", {{"A", {}}, {"A", {}}}),
               "LineWatch_Single_Line_Prepended_Incident_Text(A|T)"},
           Row{"equal names without a text", on({}, {{"A", {}}, {"A", {}}}), "A"},
           Row{"no names", on("T", {{"", {}}, {"", {}}}), "T"},
           Row{"the system's name for a nameless line", on("T", {{"A", {}}, {"", {}, {}, {}, "Metro"}}),
               "LineWatch_2_Lines_Prepended_Incident_Text(A|Metro|T)"},
           Row{"one line that lists it twice",
               {{"A", {twice, twice}}},
               "LineWatch_Single_Line_Prepended_Incident_Text(A|Text)"},
       }) {
    const auto list = build(row.lines);
    EXPECT_EQ(summaryText(*list), "Strike / " + row.expected) << row.name;
  }
}

TEST_F(ListBuilder, SharedRowsShowTheSystemThatAllLinesShareOrTheGenericImage) {
  const auto metro = shield("M"), ferry = shield("F");
  const RVConfiguredArtwork generic(std::make_shared<const NamedImage>("WidgetGenericTransit"), kFaintAlpha);
  const RVConfiguredArtwork system(std::make_shared<const SizedTransitArtwork>(metro, 3, nullptr),
                                   kFullAlpha);
  struct Row {
    const char* name;
    std::vector<SharedArtwork> systems;
    const RVConfiguredArtwork* expected;
  };
  for (const Row& row : {
           Row{"equal", {metro, shield("M")}, &system},
           Row{"different", {metro, ferry}, &generic},
           Row{"the first has none", {nullptr, metro, metro}, &system},
           Row{"the last has none", {metro, metro, nullptr}, &generic},
           Row{"none has any", {nullptr, nullptr}, &generic},
       }) {
    std::vector<LineSketch> sketches;
    for (const auto& artwork : row.systems)
      sketches.push_back({"L", {incident(1, "Strike")}, shield("own"), artwork});
    const auto list = build(sketches);
    EXPECT_TRUE(std::get<SharedTransitItem>(list->summaryItem())->artwork()->isEqual(*row.expected))
        << row.name;
  }
}

TEST_F(ListBuilder, RowsThatAreEqualShareOneEntryOfLines) {
  // Two incidents of one line with the same texts are one key: the first of the rows is rewritten, once.
  const auto list = build({{"A", {incident(1, "Delay"), incident(2, "Delay")}, shield("A")}});
  EXPECT_THAT(texts(list->expandedItems()),
              ElementsAre("Delay / LineWatch_Single_Line_Prepended_Incident_Text(A|Text)", "Delay / Text"));
  EXPECT_EQ(summaryOf(*list).primaryText(), "LineWatch_Summary_advisory_count(2)");
  EXPECT_EQ(summaryOf(*list).artworks()->size(), 1U);
}

TEST_F(ListBuilder, RebuildingFromTheSameInputGivesAnEqualList) {
  const std::vector<LineSketch> sketches = {{"A", {incident(1, "I1"), incident(2, "I2")}, shield("A")},
                                            {"B", {incident(1, "I1")}, shield("B")},
                                            {"C", {}}};
  const auto list = build(sketches, 2), again = build(sketches, 2);
  EXPECT_NE(list, again);
  EXPECT_TRUE(list->isEqual(*again));
  EXPECT_EQ(list->hash(), again->hash());
  EXPECT_FALSE(list->isEqual(*build(sketches)));
}

TEST_F(ListBuilder, RowsOpenNothingWhenNothingCanBeMadeToOpen) {
  World world;
  world.archives = false;
  install(world);
  const std::vector<LineSketch> two = {{"A", {incident(1, "I1"), incident(2, "I2")}}};
  EXPECT_EQ(summaryOf(*build(two)).userActivityData(), nullptr);
  EXPECT_EQ(build(two, 1)->expandedItems()[0]->openable(), nullptr);
}

TEST_F(ListBuilder, ErrorsWinAndTellWhatTheDeviceKnows) {
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
    EXPECT_THAT(list->expandedItems(), IsEmpty());
    EXPECT_EQ(std::get<SharedTransitItem>(list->summaryItem())->openable(), nullptr);
  }
  EXPECT_EQ(RVTransitDataSourceBuilderForResult(RVResult(nullptr, std::nullopt), 0, nullptr, nullptr),
            nullptr);
}

TEST_F(ListBuilder, AnalyticsHearOfEveryShownIncidentBeforeTheLimit) {
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

TEST_F(ListBuilder, ALinesRecordIsMadeOnceABuildHoweverManyRowsItHas) {
  const auto quiet = std::make_shared<QuietPlatform>();
  installPlatform(quiet);
  const auto shared = incident(1, "I1");
  const std::vector<LineSketch> sketches = {{"A", {shared, incident(2, "I2"), incident(3, "I3")}},
                                            {"B", {shared, incident(4, "I4")}},
                                            {"C", {shared}},
                                            {"D", {}}};
  for (std::size_t builds = 1; builds <= 2; ++builds) {
    const auto list = build(sketches);
    EXPECT_EQ(list->expandedItems().size(), 5U);
    EXPECT_EQ(quiet->compressor().count, 2 * builds) << "C and D have no row of their own";
    EXPECT_EQ(list->expandedItems()[0]->openable(), list->expandedItems()[2]->openable());
  }
}

TEST_F(ListBuilder, EachRowSharesTheSession) {
  build({{"A", {incident(1, "I1"), incident(2, "I2"), incident(3, "I3")}}});
  EXPECT_EQ(platform_->transcript().countOf("shareSession"), 4U) << "three rows and the summary";
}

TEST_F(ListBuilder, ARowOpensNothingWhenItsRecordCannotBeCompressed) {
  World world;
  world.compresses = false;
  install(world);
  const auto list = build({{"A", {incident(1, "I1"), incident(2, "I2")}}});
  EXPECT_EQ(list->expandedItems()[0]->openable(), nullptr);
  EXPECT_EQ(list->expandedItems()[1]->openable(), nullptr);
  EXPECT_NE(summaryOf(*list).userActivityData(), nullptr);
  EXPECT_EQ(platform_->compressor().callCount(), 1U) << "tried once a line";
}

}  // namespace
}  // namespace linewatch

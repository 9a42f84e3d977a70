#include "feeds/alerts/stop_incident.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"
#include "feeds/alerts/incident_records.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::int32_t kNoService = 1, kDetour = 4, kUnknown = 8, kMoved = 9, kAccessibility = 11;

SharedLineIndex twoLines() {
  LineIndex::Contents contents{.feedName = "test", .language = "en"};
  for (const char* id : {"1", "2"}) {
    FeedRoute& route = contents.routes.emplace_back();
    route.id = id;
  }
  return std::make_shared<const LineIndex>(std::move(contents));
}

std::shared_ptr<StopNames> stops() {
  return std::make_shared<StopNames>(std::vector<StopNames::PageSource>{[](std::string_view) {
    return std::optional<std::string>(
        "bay\tCadboro Bay at "
        "Sinclair\t\ncross\tCross\t\npier\tPier\tport\npier2\tPier\tport\nport\tPort\t\n");
  }});
}

class StopIncidentTest : public testing::Test {
 protected:
  IncidentRecords& records(const std::vector<AlertSketch>& alerts, double now = 100,
                           const IncidentLanguage& language = {.languages = {"en"}}) {
    return records_.emplace(std::make_shared<const IncidentTable>(messageOf({.alerts = alerts}), twoLines()),
                            std::make_shared<const IncidentLanguage>(language), Date(Seconds(now)), stops());
  }
  static std::vector<std::string> rows(const TransitIncidents& incidents) {
    std::vector<std::string> all;
    for (const SharedIncident& incident : incidents)
      all.push_back(incident->title().value_or("-") + " / " + incident->summary().value_or("-"));
    return all;
  }

 private:
  std::optional<IncidentRecords> records_;
};

AlertSketch notice(const std::string& id, const std::string& stop, std::int32_t effect,
                   const std::string& header = "") {
  return {.id = id,
          .selectors = {{.route = "1", .stop = stop}},
          .header = header.empty() ? TextsSketch() : TextsSketch{{header, ""}},
          .effect = effect};
}

TEST_F(StopIncidentTest, TheNoticesOfALineAreOneIncidentAfterTheOthers) {
  AlertSketch detour = notice("d", "bay", kDetour, "Detour at the bay");
  const auto incidents = records({notice("a", "bay", kNoService, "Stop 7 is out"),
                                  notice("b", "pier", kMoved), detour, notice("c", "unknown", kNoService)})
                             .ofRoute(0);
  EXPECT_THAT(rows(incidents),
              ElementsAre("Detour at the bay / -",
                          "3 stops affected / Cadboro Bay at Sinclair and Stop unknown closed; Pier moved"));
  EXPECT_FALSE(incidents[1]->isBlockingIncident());
  EXPECT_EQ(incidents[1]->fullDescription(),
            "Stop 7 is out\nStops: Cadboro Bay at Sinclair\n\nPier moved\n\nStop unknown closed");
  EXPECT_THAT(records({notice("a", "bay", kNoService)}).ofRoute(1), IsEmpty());
}

TEST_F(StopIncidentTest, OneStopIsNamedInTheTitle) {
  struct Row {
    std::vector<AlertSketch> alerts;
    std::string row;
  };
  for (const Row& r : {
           Row{{notice("a", "bay", kNoService)}, "Cadboro Bay at Sinclair closed / -"},
           Row{{notice("a", "bay", kNoService, "Lift works")}, "Cadboro Bay at Sinclair closed / Lift works"},
           Row{{notice("a", "bay", kUnknown, "Lift works")}, "Cadboro Bay at Sinclair affected / Lift works"},
           Row{{notice("a", "bay", kUnknown, "Cadboro Bay at Sinclair: no shelter")},
               "Cadboro Bay at Sinclair: no shelter / -"},
           Row{{notice("a", "pier", kAccessibility, "Lift 1"),
                notice("b", "pier2", kAccessibility, "Lift 2")},
               "Pier: accessibility issue / Lift 1. Lift 2"},
       }) {
    EXPECT_THAT(rows(records(r.alerts).ofRoute(0)), ElementsAre(r.row));
  }
}

TEST_F(StopIncidentTest, CountsAndListsInTheLanguageOfItsTexts) {
  const std::vector<AlertSketch> three{notice("a", "bay", kMoved), notice("b", "pier", kMoved),
                                       notice("c", "cross", kMoved)};
  IncidentLanguage polish{.languages = {"pl"}};
  polish.texts.stopsAffectedFormat = "{0, plural, one {# stop} few {few #} other {many #}}";
  EXPECT_THAT(rows(records(three, 0, polish).ofRoute(0)),
              ElementsAre("many 3 / Cadboro Bay at Sinclair, Pier, and Cross moved"));
  polish.texts.language = "pl";
  EXPECT_THAT(rows(records(three, 0, polish).ofRoute(0)),
              ElementsAre("few 3 / Cadboro Bay at Sinclair, Pier i Cross moved"));
  EXPECT_THAT(rows(records(three, 0, {.languages = {"en-GB", "en"}}).ofRoute(0)),
              ElementsAre("3 stops affected / Cadboro Bay at Sinclair, Pier and Cross moved"));
}

TEST_F(StopIncidentTest, HeadersStandForStopsWithoutNames) {
  const AlertSketch harbour = notice("a", "x1", kNoService, "Harbour is closed");
  AlertSketch both = harbour;
  both.selectors.push_back({.route = "1", .stop = "x2"});
  both.description = {{"Until May.", ""}};
  struct Row {
    std::vector<AlertSketch> alerts;
    std::string row;
  };
  for (const Row& r : {
           Row{{harbour}, "Harbour is closed / -"},
           Row{{both}, "Harbour is closed / Until May."},
           Row{{harbour, notice("b", "x1", kMoved, "Quay is moved")}, "Harbour is closed / Quay is moved"},
           Row{{harbour, notice("b", "bay", kMoved, "Works"), notice("c", "x3", kMoved, "Harbour is closed")},
               "3 stops affected / Cadboro Bay at Sinclair moved. Harbour is closed"},
           Row{{notice("a", "bay", kUnknown, "No shelter"), notice("b", "pier", kUnknown)},
               "2 stops affected / Pier. No shelter"},
           Row{{notice("a", "x1", kNoService)}, "Stop x1 closed / -"},
       }) {
    EXPECT_THAT(rows(records(r.alerts).ofRoute(0)), ElementsAre(r.row));
  }
}

TEST_F(StopIncidentTest, ALongListIsCounted) {
  AlertSketch many = notice("a", "s0", kMoved);
  for (int stop = 1; stop < 11; ++stop)
    many.selectors.push_back({.route = "1", .stop = "s" + std::to_string(stop % 10)});
  EXPECT_THAT(
      rows(records({many}).ofRoute(0)),
      ElementsAre("10 stops affected / Stop s0, Stop s1, Stop s2, Stop s3, Stop s4, Stop s5, Stop s6, "
                  "Stop s7, and 2 more moved"));
}

TEST_F(StopIncidentTest, LinesWithTheSameNoticesShareIt) {
  AlertSketch both = notice("a", "bay", kMoved);
  both.selectors.push_back({.route = "2", .stop = "bay"});
  AlertSketch elsewhere = notice("b", "pier", kMoved);
  IncidentRecords& shared = records({both});
  EXPECT_EQ(shared.ofRoute(0), shared.ofRoute(1));
  IncidentRecords& different = records({both, elsewhere});
  EXPECT_NE(different.ofRoute(0).at(0)->muid(), different.ofRoute(1).at(0)->muid());
  AlertSketch otherStop = notice("a", "bay", kMoved);
  otherStop.selectors.push_back({.route = "2", .stop = "pier"});
  IncidentRecords& apart = records({otherStop});
  EXPECT_NE(apart.ofRoute(0).at(0)->muid(), apart.ofRoute(1).at(0)->muid());
}

TEST_F(StopIncidentTest, LastsFromTheEarliestStartToTheLatestEndOfThoseInForce) {
  const auto with = [](AlertSketch alert, std::uint64_t start, std::uint64_t end) {
    alert.active = {{start, end}};
    return alert;
  };
  const auto incidents =
      records({with(notice("a", "bay", kMoved), 20, 120), with(notice("b", "pier", kMoved), 50, 200),
               with(notice("c", "cross", kMoved), 150, 300), with(notice("d", "cross", kMoved), 1, 2)})
          .ofRoute(0);
  ASSERT_THAT(rows(incidents), ElementsAre("2 stops affected / Cadboro Bay at Sinclair and Pier moved",
                                           "Cross moved / -", "Cross moved / -"));
  EXPECT_EQ(incidents[0]->startDate(), Date(Seconds(20)));
  EXPECT_EQ(incidents[0]->endDate(), Date(Seconds(200)));
  EXPECT_EQ(incidents[1]->startDate(), Date(Seconds(150)));
  EXPECT_EQ(incidents[2]->endDate(), Date(Seconds(2)));
  const auto open =
      records({with(notice("a", "bay", kMoved), 20, 0), with(notice("b", "pier", kMoved), 0, 200)})
          .ofRoute(0);
  EXPECT_EQ(open.at(0)->startDate(), std::nullopt);
  EXPECT_EQ(open.at(0)->endDate(), std::nullopt);
}

TEST_F(StopIncidentTest, AChoiceTakesStopsAndDirections) {
  AlertSketch out = notice("c", "cross", kMoved);
  out.selectors[0].direction = 0;
  AlertSketch back{.id = "d", .selectors = {{.route = "1", .direction = 1}}, .header = {{"Late", ""}}};
  IncidentRecords& all = records({notice("a", "bay", kMoved), notice("b", "pier", kMoved), out, back});
  using Stops = LineChoice::Stops;
  const auto titles = [&](const LineChoice& choice) {
    std::string text;
    for (const SharedIncident& incident : all.ofRoute(0, choice)) text += *incident->title() + ". ";
    return text;
  };
  EXPECT_EQ(titles({}), "Late. 3 stops affected. ");
  EXPECT_EQ(titles({.stops = Stops::none}), "Late. ");
  EXPECT_EQ(titles({.stops = Stops::chosen, .stopIds = {"bay", "other"}}),
            "Late. Cadboro Bay at Sinclair moved. ");
  EXPECT_EQ(titles({.stops = Stops::chosen, .stopIds = {"port"}}), "Late. Pier moved. ") << "its platform";
  EXPECT_EQ(titles({.direction = 0}), "3 stops affected. ");
  EXPECT_EQ(titles({.direction = 1}), "Late. 2 stops affected. ");
}

TEST_F(StopIncidentTest, HasTheDetailsOfAllItsNotices) {
  AlertSketch closed = notice("a", "pier", kNoService);
  closed.severity = 4;
  AlertSketch moved = notice("b", "bay", kMoved);
  moved.cause = 10;
  moved.severity = 2;
  moved.active = {{50, 200}};
  moved.selectors[0].direction = 1;
  IncidentRecords& all = records({closed, moved});
  const auto incidents = all.ofRoute(0);
  EXPECT_EQ(all.detailsOf(incidents.at(0)->muid()),
            (IncidentDetails{.effect = AlertEffect::noService,
                             .cause = AlertCause::construction,
                             .severity = AlertSeverity::severe,
                             .periods = {{.start = 50, .end = 200}},
                             .stops = {{"bay", "Cadboro Bay at Sinclair"}, {"pier", "Pier"}},
                             .directions = {1}}));
  EXPECT_EQ(all.detailsOf(7), std::nullopt);
}

TEST_F(StopIncidentTest, AlertsWithoutTextsAreWordedFromEffectCauseStopsAndLines) {
  AlertSketch detour = notice("a", "bay", kDetour);
  detour.cause = 10;
  detour.selectors.push_back({.route = "2"});
  const auto incidents = records({detour}).ofRoute(0);
  EXPECT_THAT(rows(incidents), ElementsAre("Detour / Construction · Cadboro Bay at Sinclair"));
  EXPECT_EQ(incidents[0]->fullDescription(),
            "Detour · Construction\nLines: 1 and 2\nStops: Cadboro Bay at Sinclair");
}

}  // namespace
}  // namespace linewatch

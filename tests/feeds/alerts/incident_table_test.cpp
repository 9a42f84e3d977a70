#include "feeds/alerts/incident_table.h"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"
#include "feeds/gtfs/route_type_family.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FeedRoute route(std::string id, std::optional<std::uint32_t> agency, std::optional<std::int32_t> type) {
  FeedRoute route;
  route.id = std::move(id);
  route.agency = agency;
  route.type = type;
  return route;
}

SharedLineIndex city() {
  return std::make_shared<const LineIndex>(LineIndex::Contents{
      .feedName = "test",
      .agencies = {{.id = "A", .name = "Metro"}, {.id = "B", .name = "Rail"}, {.name = "Boats"}},
      .routes = {route("M1", 0, 1), route("T1", 0, 0), route("S1", 1, 109), route("R1", 1, 2),
                 route("F1", 2, 4), route("X", {}, {})}});
}

IncidentTable tableOf(const std::vector<AlertSketch>& alerts, SharedLineIndex lines = city()) {
  return {messageOf({.alerts = alerts}), std::move(lines)};
}

/// The ids of the lines that have an incident.
std::string affected(const IncidentTable& table) {
  std::string ids;
  for (std::size_t line = 0; line < table.lines().routes().size(); ++line) {
    if (!table.incidentsOfRoute(line).empty()) ids += table.lines().routes()[line].id + " ";
  }
  return ids;
}

TEST(IncidentTable, AllFieldsOfASelectorMustFit) {
  struct Row {
    const char* name;
    SelectorSketch selector;
    std::string lines;
  };
  for (const Row& row : {
           Row{"agency by id", {.agency = "A"}, "M1 T1 "},
           Row{"agency by name", {.agency = "Rail"}, "S1 R1 "},
           Row{"agency that has only a name", {.agency = "Boats"}, "F1 "},
           Row{"another agency", {.agency = "C"}, ""},
           Row{"a basic type and those it covers", {.type = 2}, "S1 R1 "},
           Row{"an extended type", {.type = 109}, "S1 "},
           Row{"type 0 is stated", {.type = 0}, "T1 "},
           Row{"agency and type", {.agency = "B", .type = 1}, ""},
           Row{"agency and covered type", {.agency = "B", .type = 2}, "S1 R1 "},
           Row{"route", {.route = "T1"}, "T1 "},
           Row{"route and direction", {.route = "T1", .direction = 0}, "T1 "},
           Row{"route of that agency", {.agency = "A", .route = "T1", .type = 0}, "T1 "},
           Row{"route of another agency", {.agency = "B", .route = "T1"}, ""},
           Row{"route of an agency by name", {.agency = "Metro", .route = "T1"}, "T1 "},
           Row{"route of another type", {.route = "T1", .type = 3}, ""},
           Row{"route of which agency and type are not known",
               {.agency = "Z", .route = "X", .type = 3},
               "X "},
           Row{"a single trip", {.route = "T1", .trip = TripSketch{.tripId = "t"}}, ""},
           Row{"a trip without an id", {.trip = TripSketch{.routeId = "T1"}}, "T1 "},
           Row{"a trip without an id, of an agency",
               {.agency = "B", .trip = TripSketch{.routeId = "T1"}},
               ""},
           Row{"an empty trip beside a route", {.route = "T1", .trip = TripSketch{}}, "T1 "},
           Row{"two routes at once", {.route = "T1", .trip = TripSketch{.routeId = "M1"}}, ""},
           Row{"a trip of no known route", {.agency = "A", .trip = TripSketch{.startTime = "08:00:00"}}, ""},
           Row{"stop of a route", {.route = "T1", .stop = "s"}, "T1 "},
           Row{"stop of a trip's route", {.trip = TripSketch{.routeId = "T1"}, .stop = "s"}, "T1 "},
           Row{"stop", {.stop = "s"}, ""},
           Row{"stop and agency", {.agency = "A", .stop = "s"}, ""},
           Row{"nothing", {}, ""},
       }) {
    EXPECT_EQ(
        affected(tableOf({{.id = "1", .selectors = {row.selector}, .header = {{"Works", ""}}, .effect = 4}})),
        row.lines)
        << row.name;
  }
}

/// The line's stops that alerts are about, or "line" where the alerts are about the line.
std::string about(const AlertSketch& alert) {
  const IncidentTable table = tableOf({alert});
  std::string text = table.incidentsOfRoute(1).empty() ? "" : "line";
  for (const StopNotice& notice : table.stopNoticesOfRoute(1)) {
    for (const std::string_view id : notice.stopIds) text.append(id).append(" ");
  }
  return text;
}

TEST(IncidentTable, AnAlertAboutStopsAloneIsANoticeOfThem) {
  const std::vector<SelectorSketch> stops{{.route = "T1", .stop = "s"},
                                          {.route = "T1", .stop = "r"},
                                          {.route = "T1", .stop = "s"},
                                          {.stop = "q"}};
  std::vector<SelectorSketch> mixed{{.route = "T1", .stop = "s"}, {.route = "M1"}};
  for (std::int32_t effect = 0; effect <= 11; ++effect) {
    const bool isAboutStop = effect >= 9;
    const bool statesNoEffect = effect <= 1 || effect == 8;
    const auto alert = [&](const std::vector<SelectorSketch>& selectors, const TextsSketch& header) {
      return AlertSketch{.id = "1", .selectors = selectors, .header = header, .effect = effect};
    };
    const TextsSketch header{{"Works", ""}};
    EXPECT_EQ(about(alert(stops, header)), isAboutStop || statesNoEffect ? "r s " : "line") << effect;
    EXPECT_EQ(about(alert(stops, {})), "r s ") << effect;
    EXPECT_EQ(about(alert(mixed, header)), isAboutStop ? "s " : "line") << effect;
    EXPECT_EQ(about(alert({{.route = "T1"}, {.route = "T1", .stop = "s"}}, header)), "line")
        << "a line lists an alert once";
    EXPECT_EQ(about(alert({{.stop = "s"}}, header)), "") << "no line is named";
  }
}

TEST(IncidentTable, ADirectionLeavesOutSelectorsOfTheOther) {
  const IncidentTable table =
      tableOf({{.id = "0", .selectors = {{.route = "T1", .direction = 0}}, .header = {{"out", ""}}},
               {.id = "1", .selectors = {{.trip = TripSketch{.routeId = "T1", .direction = 1}}}},
               {.id = "2", .selectors = {{.route = "T1"}}, .header = {{"both", ""}}},
               {.id = "3",
                .selectors = {{.route = "T1", .stop = "s", .direction = 1}, {.route = "T1", .stop = "r"}},
                .effect = 9}});
  EXPECT_THAT(table.incidentsOfRoute(1), ElementsAre(0U, 1U, 2U));
  EXPECT_THAT(table.incidentsOfRoute(1, 0), ElementsAre(0U, 2U));
  EXPECT_THAT(table.incidentsOfRoute(1, 1), ElementsAre(1U, 2U));
  EXPECT_THAT(table.stopNoticesOfRoute(1, 0), ElementsAre(StopNotice{3, {"r"}}));
  EXPECT_THAT(table.stopNoticesOfRoute(1, 1), ElementsAre(StopNotice{3, {"r", "s"}}));
}

TEST(IncidentTable, ALineListsAnIncidentOnceInTheFeedsOrder) {
  const IncidentTable table = tableOf(
      {{.id = "1", .selectors = {{.type = 1}}, .header = {{"one", ""}}},
       {.id = "2", .selectors = {{.route = "M1"}, {.route = "T1"}, {.route = "M1"}}, .header = {{"two", ""}}},
       {.id = "3",
        .selectors = {{.agency = "A"}, {.agency = "Metro"}, {.route = "M1"}},
        .header = {{"three", ""}}},
       {.id = "4", .selectors = {{.route = "M1"}}, .header = {{"four", ""}}, .isDeleted = true}});
  EXPECT_THAT(table.incidentsOfRoute(0), ElementsAre(0U, 1U, 2U));
  EXPECT_THAT(table.incidentsOfRoute(1), ElementsAre(1U, 2U));
  EXPECT_THAT(table.incidentsOfRoute(2), IsEmpty());
}

TEST(IncidentTable, CountsSelectorsThatResolveToNothing) {
  const IncidentTable table =
      tableOf({{.id = "1",
                .selectors = {{.route = "M1"},
                              {.route = "nowhere"},
                              {.agency = "Nobody"},
                              {.type = 3},
                              {.type = 4},
                              {.agency = "A", .type = 4},
                              {},
                              {.stop = "s"},
                              {.trip = TripSketch{.tripId = "t"}},
                              {.trip = TripSketch{.tripId = "t", .routeId = "gone"}}}},
               {.id = "2"}});
  EXPECT_EQ(table.counts(), (SelectorCounts{.fitting = 2,
                                            .notAboutLines = 3,
                                            .unknown = 5,
                                            .alertsWithoutSelector = 1,
                                            .namingRoutes = 3,
                                            .unknownRoutes = 2}));
  EXPECT_EQ(complaintOf("Metro", table.counts()),
            "feed Metro: alerts: 5 of 10 selectors resolved to nothing, 1 alert without a selector");
  EXPECT_EQ(complaintOf("Metro", {.fitting = 2, .notAboutLines = 2}), "");
}

TEST(IncidentTable, EveryEntityOfAnIncidentCounts) {
  const IncidentTable table =
      tableOf({{.id = "1", .selectors = {{.route = "M1"}}, .header = {{"Works", "en"}}},
               {.id = "1", .selectors = {{.route = "T1"}}, .header = {{"Bau", "de"}}},
               {.id = "2", .selectors = {{.route = "S1"}}, .header = {{"Works", "en"}}}});
  ASSERT_EQ(table.incidents().size(), 1U);
  EXPECT_EQ(affected(table), "M1 T1 S1 ");
}

// The matching rules written out for one line and one selector.
bool fits(const LineIndex& lines, std::size_t place, const SelectorSketch& selector, bool isAboutStops) {
  const FeedRoute& line = lines.routes()[place];
  const bool tellsRoute = !selector.route.empty() || (selector.trip && !selector.trip->routeId.empty());
  if (selector.trip && !selector.trip->tripId.empty()) return false;
  if (selector.trip && !tellsRoute && !selector.trip->startTime.empty()) return false;
  if (!selector.stop.empty() && (!tellsRoute || isAboutStops)) return false;
  if (!tellsRoute && selector.agency.empty() && !selector.type) return false;
  if (!selector.route.empty() && selector.route != line.id) return false;
  if (selector.trip && !selector.trip->routeId.empty() && selector.trip->routeId != line.id) return false;
  if (!selector.agency.empty() && (line.agency || !tellsRoute)) {
    if (!line.agency) return false;
    const FeedAgency& owner = lines.agencies()[*line.agency];
    bool isId = false;
    for (const FeedAgency& agency : lines.agencies()) isId |= agency.id == selector.agency;
    const bool isOwner = selector.agency == (isId ? owner.id : owner.name);
    if (!isOwner && !(tellsRoute && owner.id.empty())) return false;
  }
  if (selector.type && (line.type || !tellsRoute)) {
    if (!line.type) return false;
    if (*line.type != *selector.type && basicRouteType(*line.type) != selector.type) return false;
  }
  return true;
}

class RandomCity {
 public:
  explicit RandomCity(unsigned seed) : random_(seed) {}

  SharedLineIndex lines() {
    LineIndex::Contents contents{.feedName = "test"};
    const char* names[] = {"", "Metro", "Rail", "A0", "A1"};
    for (std::uint32_t agency = 0; agency < 4; ++agency) {
      contents.agencies.push_back(
          {.id = agency == 3 ? "" : "A" + std::to_string(agency), .name = names[below(5)]});
    }
    for (int line = 0; line < 12; ++line) {
      contents.routes.push_back(
          route(routeId(line), maybe() ? std::optional(below(4)) : std::nullopt, type()));
    }
    return std::make_shared<const LineIndex>(std::move(contents));
  }
  SelectorSketch selector() {
    SelectorSketch sketch;
    const char* agencies[] = {"", "", "A0", "A1", "A2", "A9", "Metro", "Rail"};
    sketch.agency = agencies[below(8)];
    if (maybe()) sketch.route = routeId(static_cast<int>(below(14)));
    if (maybe()) sketch.type = type();
    if (maybe()) sketch.trip = trip();
    if (below(4) == 0) sketch.stop = "s";
    return sketch;
  }
  std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

 private:
  bool maybe() { return below(3) == 0; }
  static std::string routeId(int number) { return "R" + std::to_string(number); }
  std::optional<std::int32_t> type() {
    const std::int32_t types[] = {0, 1, 2, 3, 100, 109, 401, 700};
    return below(8) == 0 ? std::nullopt : std::optional(types[below(8)]);
  }
  TripSketch trip() {
    return {.tripId = below(5) == 0 ? "t" : "",
            .routeId = maybe() ? routeId(static_cast<int>(below(12))) : "",
            .startTime = maybe() ? "08:00:00" : ""};
  }

  std::mt19937 random_;
};

TEST(IncidentTable, AgreesWithTheRulesOnRandomFeeds) {
  std::size_t matches = 0;
  for (unsigned seed = 0; seed < 150; ++seed) {
    RandomCity random(seed);
    const SharedLineIndex lines = random.lines();
    std::vector<AlertSketch> alerts;
    for (int number = 0; number < 20; ++number) {
      AlertSketch& alert = alerts.emplace_back(AlertSketch{.id = std::to_string(number)});
      alert.header = {{alert.id, ""}};
      alert.effect = static_cast<std::int32_t>(random.below(12));
      for (std::uint32_t count = random.below(4); count > 0; --count)
        alert.selectors.push_back(random.selector());
    }
    const IncidentTable table(messageOf({.alerts = alerts}), lines);
    std::vector<bool> fittingAny(alerts.size());
    for (std::size_t line = 0; line < lines->routes().size(); ++line) {
      std::vector<std::uint32_t> expected;
      for (std::uint32_t alert = 0; alert < alerts.size(); ++alert) {
        const auto& selectors = alerts[alert].selectors;
        const std::int32_t effect = alerts[alert].effect;
        const bool areStops = std::ranges::none_of(
            selectors, [](const SelectorSketch& selector) { return selector.stop.empty(); });
        const bool isAboutStops = effect >= 9 || (areStops && (effect <= 1 || effect == 8));
        if (std::any_of(selectors.begin(), selectors.end(), [&](const SelectorSketch& selector) {
              return fits(*lines, line, selector, isAboutStops);
            })) {
          expected.push_back(alert);
        }
      }
      matches += expected.size();
      EXPECT_EQ(table.incidentsOfRoute(line), expected) << "seed " << seed << " line " << line;
    }
  }
  EXPECT_GT(matches, 1000U);
}

}  // namespace
}  // namespace linewatch

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "simulation/scenario/scenario_host.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::worlds {
namespace {

using namespace simulation;

struct Zone {
  const char* name;
  /// In the form of the TZ variable, so that no table of zones is needed.
  const char* rule;
  /// Month and day: of the clock changes of 2028, and of the leap day.
  std::array<std::pair<int, int>, 3> days;
};
constexpr std::array kZones = {
    Zone{"Berlin", "CET-1CEST,M3.5.0,M10.5.0/3", {{{2, 29}, {3, 26}, {10, 29}}}},
    Zone{"New York", "EST5EDT,M3.2.0,M11.1.0", {{{2, 29}, {3, 12}, {11, 5}}}},
    Zone{"Lord Howe", "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", {{{2, 29}, {4, 2}, {10, 1}}}}};

void setZone(const char* rule) {
  rule ? setenv("TZ", rule, 1) : unsetenv("TZ");
  tzset();
}

/// The moment of midnight by a zone's clocks.
Date midnight(const Zone& zone, int month, int day) {
  setZone(zone.rule);
  std::tm local{};
  local.tm_year = 2028 - 1900;
  local.tm_mon = month - 1;
  local.tm_mday = day;
  local.tm_isdst = -1;
  const Date date(Seconds(static_cast<double>(std::mktime(&local))));
  setZone(nullptr);
  return date;
}

/// An incident that lasts for one day of a zone.
struct LocalDay {
  std::string name;
  Date begin, end;
};

std::vector<LocalDay> localDays() {
  std::vector<LocalDay> days;
  const auto add = [&days](const Zone& zone, int month, int day) {
    days.push_back({std::string(zone.name) + " " + std::to_string(month) + "-" + std::to_string(day),
                    midnight(zone, month, day), midnight(zone, month, day + 1)});
  };
  for (const Zone& zone : kZones) {
    for (const auto& [month, day] : zone.days) add(zone, month, day);
  }
  for (int month = 1; month <= 12; ++month) add(kZones[0], month, 15);
  return days;
}

/// Whether an incident is on the list at a moment.
struct Expectation {
  Date date;
  std::string name;
  bool isShown;
};

/// It is shown up to its very end, and is gone with the next refresh at the latest.
std::vector<Expectation> expectations(const std::vector<LocalDay>& days) {
  std::vector<Expectation> all;
  for (const LocalDay& day : days) {
    all.push_back({day.begin - Seconds(1), day.name, false});
    for (Date date = day.begin; date < day.end; date += Seconds(3600)) all.push_back({date, day.name, true});
    all.push_back({day.end - Seconds(1), day.name, true});
    all.push_back({day.end + Seconds(1801), day.name, false});
  }
  std::ranges::stable_sort(all, {}, &Expectation::date);
  return all;
}

World worldOf(const std::vector<LocalDay>& days, Date start) {
  World world;
  world.start = start;
  world.host.expanded.height = 5000;
  for (const LocalDay& day : days) {
    world.incidents[day.name] = {.muid = world.incidents.size() + 1,
                                 .title = day.name,
                                 .start = day.begin - start,
                                 .end = day.end - start};
    world.lines["A"].incidents.push_back(day.name);
  }
  world.lines["A"].muid = 1;
  world.favorites = {{.line = "A"}};
  return world;
}

bool shows(const RVTransitListItem& list, const std::string& title) {
  TransitItems rows = list.expandedItems().value_or(TransitItems{});
  if (const auto* row = std::get_if<SharedTransitItem>(&list.summaryItem())) rows.push_back(*row);
  return std::ranges::any_of(rows, [&](const SharedTransitItem& row) { return row->primaryText() == title; });
}

/// A widget that is on screen for a year, which has a leap day and both changes of the clocks.
TEST(SimulatedYear, ShowsEachIncidentOnItsLocalDay) {
  const Date start = midnight(kZones[0], 1, 1), end = start + Seconds(366 * 86400.0);
  const auto days = localDays();
  ScenarioHost host(worldOf(days, start));
  ASSERT_EQ(host.perform(step::Load{}), std::nullopt);
  ASSERT_EQ(host.perform(step::Appear{}), std::nullopt);
  std::size_t lookUps = 0;
  const auto advanceTo = [&](Date date) {
    host.platform().advance(date - host.platform().mainLoop().now());
    lookUps += host.transcript().countOf("lookup");
    host.platform().transcript().clear();
  };
  for (const auto& [date, name, isShown] : expectations(days)) {
    advanceTo(date);
    EXPECT_EQ(shows(*host.controller()->dataSource()->listItem(), name), isShown)
        << name << " at " << description(date);
  }
  advanceTo(end);
  // Half an hour from the end of one refresh, half a second long, to the next one.
  EXPECT_EQ(lookUps, static_cast<std::size_t>(366 * 86400 / 1800.5) + 1);
  ASSERT_EQ(host.perform(step::Disappear{}), std::nullopt);
  const auto sessions = host.transcript().eventsNamed("analytics");
  ASSERT_EQ(sessions.size(), 1U);
  EXPECT_EQ(sessions[0].field("duration"), Value(366 * 86400.0));
}

}  // namespace
}  // namespace linewatch::worlds

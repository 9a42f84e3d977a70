#include "feeds/upcoming_incidents.h"

#include <gmock/gmock.h>

#include "platform/transit_records.h"
#include "platform/transit_storage_incident.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr Date kPresent{Seconds(1000)};

SharedIncident startingIncident(std::uint64_t muid, std::optional<double> start) {
  TransitIncidentFields fields{.muid = muid};
  if (start) fields.startDate = kPresent + Seconds(*start);
  return std::make_shared<const TransitStorageIncident>(std::move(fields));
}

SharedLineItem lineWith(std::uint64_t muid, TransitIncidents incidents) {
  return std::make_shared<const TransitLineRecord>(TransitLineFields{.muid = muid}, std::move(incidents));
}

using Listing = std::pair<std::uint64_t, std::vector<std::uint64_t>>;

std::vector<Listing> upcoming(const TransitLineItems& lines) {
  std::vector<Listing> all;
  for (const UpcomingIncident& each : upcomingIncidents(lines, kPresent)) {
    all.emplace_back(each.incident->muid(), std::vector<std::uint64_t>());
    for (const SharedLineItem& of : each.lines) all.back().second.push_back(of->muid());
  }
  return all;
}

TEST(UpcomingIncidents, AreSortedByStartWithTheirLines) {
  EXPECT_THAT(upcoming({lineWith(1, {startingIncident(11, 300), startingIncident(12, 200)}),
                        lineWith(2, {startingIncident(13, 200), startingIncident(12, 200),
                                     startingIncident(12, 200)})}),
              ElementsAre(Pair(12, ElementsAre(1, 2)), Pair(13, ElementsAre(2)), Pair(11, ElementsAre(1))));
}

TEST(UpcomingIncidents, BeginAfterNowAndWithinSevenDays) {
  constexpr double kSevenDays = 7 * 86400;
  EXPECT_THAT(upcoming({lineWith(1, {startingIncident(1, 0), startingIncident(2, 1),
                                     startingIncident(3, kSevenDays), startingIncident(4, kSevenDays + 1),
                                     startingIncident(5, {}), startingIncident(6, -1)})}),
              ElementsAre(Pair(2, ElementsAre(1)), Pair(3, ElementsAre(1))));
}

}  // namespace
}  // namespace linewatch

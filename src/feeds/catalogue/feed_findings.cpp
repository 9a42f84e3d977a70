#include "feeds/catalogue/feed_findings.h"

#include <algorithm>

#include "feeds/alerts/alert_period.h"
#include "feeds/alerts/distinct_incidents.h"
#include "feeds/transit_feeds.h"

namespace linewatch {

namespace {

std::size_t alertCountAt(const AlertsMessage& message, Date now) {
  const auto incidents = distinctIncidents(message);
  const auto count = std::ranges::count_if(incidents, [&](const DistinctIncident& incident) {
    const ShownPeriod period = periodToShow(message.periods(message.entities()[incident.entity]), now);
    return (!period.start || *period.start <= now) && (!period.end || now < *period.end);
  });
  return static_cast<std::size_t>(count);
}

}  // namespace

FeedFindings findingsIn(const StoredFeed& feed, const SharedLineIndex& lines, const FeedAlerts& alerts,
                        Date now) {
  return {.feed = feed,
          .lineCount = lines->routes().size(),
          .alertCount = alertCountAt(*alerts.message, now),
          .state = stateOfFeed(feed, lines, alerts, now)};
}

}  // namespace linewatch

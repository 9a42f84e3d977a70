#include "desktop/presence/rider_news.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "feeds/gtfs/line_index.h"

namespace linewatch::desktop {

namespace {

notices::Severity severityIn(StatusSeverity severity) {
  switch (severity) {
    case StatusSeverity::info:
      return notices::Severity::info;
    case StatusSeverity::warning:
      return notices::Severity::warning;
    case StatusSeverity::severe:
      return notices::Severity::severe;
    case StatusSeverity::unknown:
      break;
  }
  return notices::Severity::unknown;
}

notices::IncidentNews incidentIn(const StatusIncident& incident) {
  return {.muid = incident.muid,
          .title = incident.title.empty() ? incident.summary : incident.title,
          .summary = incident.title.empty() ? std::string() : incident.summary,
          .severity = severityIn(incident.severity),
          .isBlocking = incident.isBlocking};
}

}  // namespace

std::vector<notices::LineNews> newsOf(std::span<const notices::Subscription> subscriptions,
                                      const TransitStatus& status) {
  std::vector<notices::LineNews> news;
  for (const StatusLine& line : status.lines) {
    const auto subscription = std::ranges::find_if(subscriptions, [&line](const auto& one) {
      return stableMuid(one.line.feed, one.line.route) == line.muid;
    });
    if (subscription == subscriptions.end()) continue;
    notices::LineNews known{.line = subscription->line, .name = line.name, .isKnown = true, .incidents = {}};
    for (const std::size_t index : line.incidents)
      known.incidents.push_back(incidentIn(status.incidents.at(index)));
    news.push_back(std::move(known));
  }
  return news;
}

}  // namespace linewatch::desktop

#include "feeds/alerts/incident_details.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "feeds/alerts/incident_sources.h"
#include "feeds/alerts/incident_stops.h"

namespace linewatch {

namespace {

template <class Part, class Projection>
void sortUnique(std::vector<Part>& parts, Projection projection) {
  std::ranges::sort(parts, {}, projection);
  const auto isSame = [projection](const Part& a, const Part& b) {
    return std::invoke(projection, a) == std::invoke(projection, b);
  };
  parts.erase(std::unique(parts.begin(), parts.end(), isSame), parts.end());
}

void addFromAlert(const IncidentSources& sources, const AlertsMessage::Entity& alert,
                  IncidentDetails& details) {
  if (details.effect == AlertEffect::unknownEffect) details.effect = alert.effect;
  if (details.cause == AlertCause::unknownCause) details.cause = alert.cause;
  const auto periods = sources.table->message().periods(alert);
  details.periods.insert(details.periods.end(), periods.begin(), periods.end());
}

}  // namespace

IncidentDetails incidentDetails(const IncidentSources& sources, std::span<const std::uint32_t> places) {
  const AlertsMessage& message = sources.table->message();
  IncidentDetails details;
  for (const std::uint32_t place : places) {
    addFromAlert(sources, sources.alert(sources.incident(place)), details);
    for (const std::string_view id : stopIdsOf(sources, place))
      details.stops.push_back({shownStopId(id), nameOfStop(sources, id)});
    for (const std::uint32_t entity : sources.table->entitiesOf(place)) {
      details.severity = std::max(details.severity, message.entities()[entity].severity);
      for (const AlertSelector& selector : message.selectors(message.entities()[entity])) {
        if (selector.direction) details.directions.push_back(*selector.direction);
      }
    }
  }
  sortUnique(details.stops, &IncidentStop::id);
  sortUnique(details.directions, std::identity());
  return details;
}

}  // namespace linewatch

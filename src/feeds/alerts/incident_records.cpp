#include "feeds/alerts/incident_records.h"

#include <span>
#include <utility>

#include "feeds/alerts/line_incident.h"
#include "feeds/alerts/stop_incident.h"
#include "feeds/alerts/stop_notices.h"

namespace linewatch {

IncidentRecords::IncidentRecords(SharedIncidentTable table, SharedIncidentLanguage language, Date now,
                                 std::shared_ptr<StopNames> stops)
    : sources_{.table = std::move(table),
               .language = std::move(language),
               .now = now,
               .stops = std::move(stops)} {}

TransitIncidents IncidentRecords::ofRoute(std::size_t route, const LineChoice& choice) {
  TransitIncidents incidents;
  for (const std::uint32_t place : sources_.table->incidentsOfRoute(route, choice.direction))
    incidents.push_back(record(place));
  addStopIncidents(route, choice, incidents);
  return incidents;
}

SharedIncident IncidentRecords::record(std::uint32_t place) {
  SharedIncident& known = made_[place];
  if (!known) {
    known = lineIncident(sources_, place);
    placesOfMade_.emplace(known->muid(), place);
  }
  return known;
}

void IncidentRecords::addStopIncidents(std::size_t route, const LineChoice& choice,
                                       TransitIncidents& incidents) {
  for (auto& [phase, ofPhase] : stopNoticesByPhase(sources_, route, choice)) {
    const std::uint64_t muid = muidOfStopIncident(sources_.table->lines().feedName(), ofPhase.notices);
    SharedIncident& known = madeStopIncidents_[muid];
    if (!known) known = stopIncident(muid, ofPhase.notices, *sources_.language);
    noticesOfStopIncidents_.try_emplace(muid, std::move(ofPhase.places));
    incidents.push_back(known);
  }
}

std::optional<IncidentDetails> IncidentRecords::detailsOf(std::uint64_t muid) const {
  if (const auto notices = noticesOfStopIncidents_.find(muid); notices != noticesOfStopIncidents_.end())
    return incidentDetails(sources_, notices->second);
  const auto place = placesOfMade_.find(muid);
  if (place == placesOfMade_.end()) return std::nullopt;
  return incidentDetails(sources_, std::span(&place->second, 1));
}

}  // namespace linewatch

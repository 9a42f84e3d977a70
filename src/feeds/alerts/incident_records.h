#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "feeds/alerts/incident_details.h"
#include "feeds/alerts/incident_sources.h"
#include "feeds/alerts/incident_texts.h"
#include "platform/line_choice.h"
#include "platform/transit_incident.h"
#include "shared/date.h"

namespace linewatch {

/// Makes the record of each incident when a line that has it is first asked for. Lines with the same incident
/// share its record.
class IncidentRecords {
 public:
  /// `now` chooses among the periods of an incident. Without `stops` no names of stops are known.
  IncidentRecords(SharedIncidentTable table, SharedIncidentLanguage language, Date now,
                  std::shared_ptr<StopNames> stops = nullptr);

  /// The incidents of the line, filtered by `choice`. Last come up to three incidents that hold the stop
  /// notices: those in force now, the future ones, and the past ones.
  TransitIncidents ofRoute(std::size_t route, const LineChoice& choice = {});
  /// The `muid` of an incident, by its index in the table.
  std::uint64_t muidOf(std::size_t place) const {
    return linewatch::muidOf(sources_, sources_.table->incidents()[place]);
  }

  /// For each incident about stops that `ofRoute` has given: its notices, as indexes into the table's
  /// incidents.
  using NoticesOfStopIncidents = std::map<std::uint64_t, std::vector<std::uint32_t>>;
  const NoticesOfStopIncidents& noticesOfStopIncidents() const { return noticesOfStopIncidents_; }
  /// The details of an incident that `ofRoute` has given; absent for others.
  std::optional<IncidentDetails> detailsOf(std::uint64_t muid) const;

 private:
  SharedIncident record(std::uint32_t place);
  void addStopIncidents(std::size_t route, const LineChoice& choice, TransitIncidents& incidents);

  IncidentSources sources_;
  std::unordered_map<std::uint32_t, SharedIncident> made_;
  /// The places of the incidents in `made_`, by `muid`.
  std::map<std::uint64_t, std::uint32_t> placesOfMade_;
  std::map<std::uint64_t, SharedIncident> madeStopIncidents_;
  NoticesOfStopIncidents noticesOfStopIncidents_;
};

}  // namespace linewatch

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "feeds/alerts/incident_details.h"
#include "feeds/alerts/incident_language.h"
#include "feeds/alerts/incident_table.h"
#include "feeds/alerts/stop_incident.h"
#include "feeds/gtfs/stop_names.h"
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

  /// The incidents of the line that `choice` wants. Its stop notices are one incident after the others; those
  /// that are not in force now, and so are not shown yet or any more, are incidents of their own.
  TransitIncidents ofRoute(std::size_t route, const LineChoice& choice = {});
  /// The `muid` of an incident, by its index in the table.
  std::uint64_t muidOf(std::size_t place) const { return muidOf(table_->incidents()[place]); }

  /// The notices that an incident about stops holds, as indexes into the table's incidents. Has those that
  /// `ofRoute` has given.
  using NoticesOfStopIncidents = std::map<std::uint64_t, std::vector<std::uint32_t>>;
  const NoticesOfStopIncidents& noticesOfStopIncidents() const { return noticesOfStopIncidents_; }
  /// The details of an incident that `ofRoute` has given; absent for others.
  std::optional<IncidentDetails> detailsOf(std::uint64_t muid) const;

 private:
  /// A text as plain text, in the language of its tag or else of the feed. Empty when there is none.
  struct Text {
    std::string text;
    std::string_view language;
  };

  SharedIncident record(std::uint32_t place);
  SharedIncident make(std::uint32_t place) const;
  OptionalText detailsInWords(std::uint32_t place) const;
  void addStopIncidents(std::size_t route, const LineChoice& choice, TransitIncidents& incidents);
  WordedStopNotice worded(const StopNotice& notice) const;
  bool isChosen(std::string_view stopId, const LineChoice& choice) const;
  std::string_view stationOf(std::string_view stopId) const;
  /// The stop's name; empty when not known.
  std::string nameOf(std::string_view stopId) const;
  /// The stops' names, each once; "Stop 7" for one without a name.
  template <class StopIds>
  std::vector<std::string> namesOf(const StopIds& stopIds) const;
  std::set<std::string_view> stopIdsOf(std::uint32_t place) const;
  std::string lineNamesOf(std::uint32_t place) const;
  void addDetails(std::uint32_t place, IncidentDetails& details) const;
  std::uint64_t muidOf(const DistinctIncident& incident) const;
  std::vector<AlertTranslation> translations(const DistinctIncident& incident, AlertText kind) const;
  Text bestText(const DistinctIncident& incident, AlertText kind) const;
  bool onlyNamesLines(std::string_view title, const AlertsMessage::Entity& entity) const;
  OptionalText bestAddress(const DistinctIncident& incident) const;

  SharedIncidentTable table_;
  SharedIncidentLanguage language_;
  Date now_;
  std::shared_ptr<StopNames> stops_;
  std::unordered_map<std::uint32_t, SharedIncident> made_;
  /// The places of the incidents in `made_`, by `muid`.
  std::map<std::uint64_t, std::uint32_t> placesOfMade_;
  std::map<std::uint64_t, SharedIncident> madeStopIncidents_;
  NoticesOfStopIncidents noticesOfStopIncidents_;
};

}  // namespace linewatch

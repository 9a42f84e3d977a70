#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "feeds/alerts/feed_texts.h"
#include "feeds/alerts/incident_table.h"
#include "platform/transit_incident.h"
#include "shared/date.h"

namespace linewatch {

/// The language in which a user reads incidents.
struct IncidentLanguage {
  /// Language tags, the best first.
  std::vector<std::string> languages;
  FeedTexts texts = FeedTexts::english();
};

using SharedIncidentLanguage = std::shared_ptr<const IncidentLanguage>;

/// Makes the record of each incident when a line that has it is first asked for. Lines with the same incident
/// share its record.
class IncidentRecords {
 public:
  /// `now` chooses among the periods of an incident.
  IncidentRecords(SharedIncidentTable table, SharedIncidentLanguage language, Date now);

  TransitIncidents ofRoute(std::size_t route);
  /// The `muid` of an incident, by its index in the table.
  std::uint64_t muidOf(std::size_t place) const { return muidOf(table_->incidents()[place]); }

 private:
  /// A text as plain text, in the language of its tag or else of the feed. Empty when there is none.
  struct Text {
    std::string text;
    std::string_view language;
  };

  SharedIncident record(std::uint32_t place);
  SharedIncident make(const DistinctIncident& incident) const;
  std::uint64_t muidOf(const DistinctIncident& incident) const;
  AlertEffect effectOnLines(const DistinctIncident& incident) const;
  std::vector<AlertTranslation> translations(const DistinctIncident& incident, AlertText kind) const;
  Text bestText(const DistinctIncident& incident, AlertText kind) const;
  bool onlyNamesLines(std::string_view title, const AlertsMessage::Entity& entity) const;
  OptionalText bestAddress(const DistinctIncident& incident) const;

  SharedIncidentTable table_;
  SharedIncidentLanguage language_;
  Date now_;
  std::unordered_map<std::uint32_t, SharedIncident> made_;
};

}  // namespace linewatch

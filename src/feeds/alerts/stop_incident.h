#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "feeds/alerts/alert_enumerations.h"
#include "feeds/alerts/alert_period.h"
#include "feeds/alerts/incident_language.h"
#include "feeds/alerts/incident_stops.h"
#include "platform/transit_incident.h"

namespace linewatch {

/// An alert about stops of a line, in the user's language.
struct WordedStopNotice {
  std::uint64_t muid = 0;
  AlertEffect effect = AlertEffect::unknownEffect;
  AlertCause cause = AlertCause::unknownCause;
  ShownPeriod period;
  /// Plain texts; empty when the alert has none.
  std::string header, description;
  /// The language tag of the description.
  std::string language;
  OptionalText url;
  /// The line's stops that it is about.
  StopNameList stops;
};

/// The `muid` of the incident that holds the notices. Lines with the same notices and stop names share it.
std::uint64_t muidOfStopIncident(std::string_view feedName, std::span<const WordedStopNotice> notices);

/// The one incident for all stop notices of a line, e.g. "2 stops affected", "Harbour closed; Market moved".
/// The headers of notices stand for stops without names, and for effects without words for stops. It lasts
/// from the earliest start to the latest end, and its full description has each notice's own text.
SharedIncident stopIncident(std::uint64_t muid, std::span<const WordedStopNotice> notices,
                            const IncidentLanguage& language);

}  // namespace linewatch

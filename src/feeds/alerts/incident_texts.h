#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "feeds/alerts/incident_sources.h"
#include "platform/transit_incident.h"

namespace linewatch {

struct IncidentText {
  /// Plain text; empty when there is none.
  std::string text;
  /// The language tag of the text, else that of the feed.
  std::string_view language;
};

/// The non-empty text in the language that suits the user best.
IncidentText bestText(const IncidentSources& sources, const DistinctIncident& incident, AlertText kind);

/// The first address that may be opened, in the order in which the languages fit.
OptionalText bestAddress(const IncidentSources& sources, const DistinctIncident& incident);

/// True when the title says no more than the shield and the name of a line that the alert names.
bool onlyNamesItsLine(const IncidentSources& sources, std::string_view title,
                      const AlertsMessage::Entity& alert);

std::uint64_t muidOf(const IncidentSources& sources, const DistinctIncident& incident);

/// Absent for an empty text.
OptionalText textIfAny(std::string text);

}  // namespace linewatch

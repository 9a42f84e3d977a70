#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "feeds/alerts/incident_sources.h"
#include "feeds/alerts/stop_incident.h"
#include "platform/line_choice.h"

namespace linewatch {

/// Where a period lies. Notices in force are listed first.
enum class Phase { inForce, coming, over };

struct StopNotices {
  std::vector<WordedStopNotice> notices;
  /// The incidents of the notices, as indexes into the table.
  std::vector<std::uint32_t> places;
};

/// The stop notices of a line that `choice` wants. No phase is empty.
std::map<Phase, StopNotices> stopNoticesByPhase(const IncidentSources& sources, std::size_t route,
                                                const LineChoice& choice);

}  // namespace linewatch

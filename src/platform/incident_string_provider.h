#pragma once

#include "platform/transit_incident.h"

namespace linewatch {

/// Words an incident for a row. Main thread.
class IncidentStringProvider {
 public:
  virtual ~IncidentStringProvider() = default;
  /// Absent or empty when the incident has no title.
  virtual OptionalText cellTitleForIncident(const TransitIncident& incident) = 0;
  /// Absent or empty when there is nothing more to say.
  virtual OptionalText cellSecondaryTextForIncident(const TransitIncident& incident) = 0;
};

}  // namespace linewatch

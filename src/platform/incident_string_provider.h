#pragma once

#include "platform/transit_incident.h"

namespace linewatch {

/// Words an incident for a row. What it gives may be part of the incident. Main thread.
class IncidentStringProvider {
 public:
  virtual ~IncidentStringProvider() = default;
  /// Absent or empty when the incident has no title.
  virtual SharedText cellTitleForIncident(const SharedIncident& incident) = 0;
  /// Absent or empty when there is nothing more to say.
  virtual SharedText cellSecondaryTextForIncident(const SharedIncident& incident) = 0;
};

}  // namespace linewatch

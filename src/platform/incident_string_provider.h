#pragma once

#include "platform/transit_incident.h"

namespace linewatch {

/// Gives the texts of an incident's row. A text may share the incident's memory, and keeps it alive. Main
/// thread; does not fail.
class IncidentStringProvider {
 public:
  virtual ~IncidentStringProvider() = default;
  /// Absent or empty when the incident has no title.
  virtual SharedText cellTitleForIncident(const SharedIncident& incident) = 0;
  /// Absent or empty when there is nothing more to say.
  virtual SharedText cellSecondaryTextForIncident(const SharedIncident& incident) = 0;
};

}  // namespace linewatch

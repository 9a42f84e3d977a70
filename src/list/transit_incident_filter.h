#pragma once

#include "platform/transit_incident.h"

namespace linewatch {

/// Decides which incidents are shown, by their dates alone: an incident is shown while it is in force.
class RVTransitIncidentFilter {
 public:
  virtual ~RVTransitIncidentFilter() = default;

  /// An incident is in force from its start to its end, both included; an absent date sets no limit. Reads
  /// the clock on every call.
  virtual bool shouldDisplayIncident(const TransitIncident& incident) const;
};

}  // namespace linewatch

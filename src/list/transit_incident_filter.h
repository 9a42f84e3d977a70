#pragma once

#include "platform/transit_incident.h"

namespace linewatch {

/// Decides which incidents are shown: those in force now, going by their dates alone.
class RVTransitIncidentFilter {
 public:
  virtual ~RVTransitIncidentFilter() = default;

  /// An incident is in force from its start to its end, both included; an absent date is no bound. Reads the
  /// clock on every call.
  virtual bool shouldDisplayIncident(const TransitIncident& incident) const;
};

}  // namespace linewatch

#pragma once

#include "platform/transit_incident.h"
#include "shared/date.h"

namespace linewatch {

/// Whether the incident is in force at `now`: from its start to its end, both included. An absent date sets
/// no limit. Any thread.
bool isInForceAt(const TransitIncident& incident, Date now);

}  // namespace linewatch

#include "platform/in_force.h"

namespace linewatch {

bool isInForceAt(const TransitIncident& incident, Date now) {
  const auto start = incident.startDate();
  if (start && *start > now) return false;
  const auto end = incident.endDate();
  return !(end && *end < now);
}

}  // namespace linewatch

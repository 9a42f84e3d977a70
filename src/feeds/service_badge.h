#pragma once

#include <memory>
#include <string>

#include "platform/transit_incident.h"
#include "platform/transit_records.h"
#include "shared/date.h"

namespace linewatch {

/// The line's fields, with a badge on its artwork while a blocking incident is in force at `now`: nothing
/// runs on the line. `noService` says so in the user's language, for screen readers. Without such an incident
/// the fields are the given ones.
std::shared_ptr<const TransitLineFields> withServiceBadge(std::shared_ptr<const TransitLineFields> line,
                                                          const TransitIncidents& incidents, Date now,
                                                          const std::string& noService);

}  // namespace linewatch

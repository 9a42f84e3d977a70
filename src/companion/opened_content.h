#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "activity/rova_activity.h"
#include "platform/system_controller.h"
#include "platform/transit_storage_incident.h"
#include "shared/outcome.h"
#include "wire/keyed_archiver.h"

namespace linewatch {

using StoredIncidents = std::vector<std::shared_ptr<const TransitStorageIncident>>;

/// What a row hands to the companion application: the activity record of a line, or a list of incidents.
using HandedOver = std::variant<std::shared_ptr<const RovaActivity>, StoredIncidents>;

/// Decodes a record, compressed or not, or an archived list. `name` is what errors call the bytes.
Outcome<HandedOver> handedOver(const std::string& name, Bytes bytes, KeyedArchiver& archiver);

/// The bytes that an activity of a row carries, still packed; an error when it carries none.
Outcome<Bytes> bytesCarriedBy(const UserActivity& activity);

}  // namespace linewatch

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

/// The decoded content of a row's activity: the activity record of a line, or a list of incidents.
using OpenedContent = std::variant<std::shared_ptr<const RovaActivity>, StoredIncidents>;

/// Decodes an activity record, compressed with bzip2 or not, or an archived incident list. Errors name the
/// bytes `name`. A record may begin with bzip2's "BZh": if bzip2 refuses it, it is read as an uncompressed
/// record.
Outcome<OpenedContent> decodeOpenedContent(const std::string& name, const Bytes& bytes,
                                           KeyedArchiver& archiver);

/// The encoded bytes in a row's activity, compressed or not; an error without any.
Outcome<Bytes> contentBytes(const UserActivity& activity);

}  // namespace linewatch

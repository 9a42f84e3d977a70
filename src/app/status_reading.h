#pragma once

#include <optional>
#include <string>

#include "status/transit_status.h"

namespace linewatch::app {

/// The status in a text that `statusForm` gives; absent when it is something else, or of a later version.
std::optional<TransitStatus> parseStatus(const std::string& json);

}  // namespace linewatch::app

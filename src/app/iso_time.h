#pragma once

#include <optional>
#include <string>

#include "shared/date.h"

namespace linewatch::app {

/// Parses an ISO 8601 time with "Z" or an offset, e.g. "2026-11-24T08:00:00Z" or "2026-11-24T09:00+01:00".
/// Absent for anything else.
std::optional<Date> parseTime(const std::string& text);

}  // namespace linewatch::app

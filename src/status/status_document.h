#pragma once

#include <string>
#include <string_view>

#include "shared/value.h"
#include "status/transit_status.h"

namespace linewatch {

/// The version of the document. It grows if a field is removed or changes its meaning, but not if one is
/// added.
inline constexpr int kStatusDocumentVersion = 1;

/// The status as plain values, for `status --format json` and the bus. docs/json.md describes it; its words
/// are those of `show --json`. It holds no current time, so equal statuses give equal documents.
Dictionary statusForm(const TransitStatus& status, const std::string& summary);

/// "allClear", "incidents", "unknown" or "noFavorites".
std::string_view nameOf(TransitStatus::State state);
/// "unknown", "info", "warning" or "severe".
std::string_view nameOf(StatusSeverity severity);

}  // namespace linewatch

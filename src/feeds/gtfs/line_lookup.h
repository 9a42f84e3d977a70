#pragma once

#include <span>
#include <string_view>

#include "feeds/gtfs/line_search.h"
#include "shared/outcome.h"

namespace linewatch {

/// The one line that a user names: by its route id, by feed and route id ("Metro:12"), or by a name that no
/// other line has ("12", "Metro:Red Line"). The error of a name that fits several lines, or none, says which
/// ones may be meant.
Outcome<FoundLine> findLine(std::span<const SharedLineIndex> indexes, std::string_view name);

}  // namespace linewatch

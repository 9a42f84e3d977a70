#pragma once

#include <span>
#include <string_view>

#include "feeds/gtfs/line_search.h"
#include "shared/outcome.h"

namespace linewatch {

/// Finds the line that a user names: by its route id, by feed and route id ("Metro:12"), or by a name that no
/// other line has ("12", "Metro:Red Line"). When several lines or none have the name, the error lists the
/// likely ones.
Outcome<FoundLine> findLine(std::span<const SharedLineIndex> indexes, std::string_view name);

}  // namespace linewatch

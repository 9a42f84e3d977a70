#pragma once

#include <span>
#include <string>
#include <string_view>

#include "feeds/gtfs/line_search.h"
#include "shared/outcome.h"

namespace linewatch {

/// Finds the line that a user names: by its route id, by feed and route id ("Metro:12"), or by a name that no
/// other line has ("12", "Metro:Red Line"). When several lines have the name, the error has the code
/// `invalid`; when none has it, `notFound`. Both list the likely lines.
Outcome<FoundLine> findLine(std::span<const SharedLineIndex> indexes, std::string_view name);

/// The likely lines in an error of `findLine`, e.g. "Metro:m:4 (Red Line)"; empty when there are none.
std::string likelyLinesOf(const Error& error);

}  // namespace linewatch

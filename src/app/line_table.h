#pragma once

#include <string>
#include <vector>

#include "app/terminal_text.h"
#include "feeds/gtfs/line_search.h"

namespace linewatch::app {

/// A table with one row for each line: shield, long name, agency, the id that other commands take, and the
/// line's note. `notes`: one for each line, or none at all.
std::string lineTable(const std::vector<FoundLine>& lines, const TerminalStyle& style,
                      const std::vector<std::string>& notes = {});

}  // namespace linewatch::app

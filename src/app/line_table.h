#pragma once

#include <string>
#include <vector>

#include "app/terminal_text.h"
#include "feeds/gtfs/line_search.h"

namespace linewatch::app {

/// A table with one row for each line: shield, long name, agency, and the id that other commands take.
std::string lineTable(const std::vector<FoundLine>& lines, const TerminalStyle& style);

}  // namespace linewatch::app

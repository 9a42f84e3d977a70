#pragma once

#include <string>
#include <vector>

#include "app/terminal_text.h"
#include "feeds/gtfs/line_search.h"

namespace linewatch::app {

/// A table with one row per line: shield, long name, agency, and the id by which other commands know it.
std::string lineTable(const std::vector<FoundLine>& lines, const TerminalStyle& style);

}  // namespace linewatch::app

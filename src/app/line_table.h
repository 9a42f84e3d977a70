#pragma once

#include <string>
#include <vector>

#include "app/terminal_text.h"
#include "feeds/gtfs/line_search.h"

namespace linewatch::app {

/// A row a line: its shield, its long name, its agency, and how to name it to the other commands.
std::string lineTable(const std::vector<FoundLine>& lines, const TerminalStyle& style);

}  // namespace linewatch::app

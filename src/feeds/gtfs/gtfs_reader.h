#pragma once

#include <string>

#include "feeds/gtfs/gtfs_source.h"
#include "feeds/gtfs/line_index.h"
#include "shared/outcome.h"

namespace linewatch {

/// Reads what a timetable feed says about its lines: agency.txt, feed_info.txt and routes.txt, the last of
/// which it has to have. Missing columns and values are left empty, a route id that comes again is left out;
/// a table that cannot be read as one is an error that names file, line and reason.
Outcome<LineIndex::Contents> readGtfs(GtfsSource& source, std::string feedName);

}  // namespace linewatch

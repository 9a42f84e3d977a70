#pragma once

#include <string>

#include "feeds/gtfs/gtfs_source.h"
#include "feeds/gtfs/line_index.h"
#include "shared/outcome.h"

namespace linewatch {

/// Reads the lines of a timetable feed from agency.txt, feed_info.txt and routes.txt; only routes.txt is
/// required. Missing columns and values are left empty. Of several routes with one id the first counts. The
/// error of a malformed table names file, line and reason.
Outcome<LineIndex::Contents> readGtfs(GtfsSource& source, std::string feedName);

}  // namespace linewatch

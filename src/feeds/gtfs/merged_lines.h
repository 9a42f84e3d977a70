#pragma once

#include <span>

#include "feeds/gtfs/line_index.h"

namespace linewatch {

/// The lines of several timetables of one feed as one index. Of routes with the same id the first one counts;
/// the language is that of the first timetable which states one. `indexes` is not empty.
SharedLineIndex mergedLines(std::span<const SharedLineIndex> indexes);

}  // namespace linewatch

#pragma once

#include <vector>

#include "platform/transit_line.h"
#include "shared/value.h"

namespace linewatch {

/// The kind of map that the companion application opens with: that of public transport.
inline constexpr int kOpenedMapType = 3;

/// The bytes of the activity record that opens the line. They depend on nothing but the line's values, so
/// they can be made ahead. Any thread.
Bytes activityRecordOfLine(const TransitLineItem& line);

/// The records of the lines that may have a row in a list of all these lines, in order: a row belongs to the
/// first line that lists its incident. Any thread.
std::vector<Bytes> activityRecordsOfRows(const TransitLineItems& lines);

}  // namespace linewatch

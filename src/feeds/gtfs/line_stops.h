#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/gtfs/gtfs_source.h"
#include "shared/outcome.h"

namespace linewatch {

/// Where a line goes.
struct LineStops {
  struct Stop {
    /// Of the stations; of stops without a station their own. One name may stand for several, e.g. the two
    /// sides of a street.
    std::vector<std::string> ids;
    std::string name;

    bool operator==(const Stop&) const = default;
  };

  /// The names of the destinations in direction 0 and 1, the most frequent first. Empty when the timetable
  /// does not say.
  std::array<std::vector<std::string>, 2> destinations;
  /// In the order of travel, each name once. Empty when the timetable has no trips of the line.
  std::vector<Stop> stops;

  bool operator==(const LineStops&) const = default;
};

/// Reads trips.txt, stop_times.txt and stops.txt, piece by piece. Takes about a second for each 200 MB, so it
/// is for one line that a user asks about.
Outcome<LineStops> readLineStops(GtfsSource& source, std::string_view routeId);

}  // namespace linewatch

#pragma once

#include <cstdint>
#include <string>

#include "platform/line_choice.h"

namespace linewatch {

/// The identifier by which the transit service knows something on the map.
struct MapItemIdentifier {
  std::uint64_t muid = 0;
  /// The feed and the route of a line, for a service that keeps lines by feed; both empty when not known. The
  /// `muid` alone is enough to find the line.
  std::string feed = {};
  std::string routeId = {};
  LineChoice choice = {};

  bool operator==(const MapItemIdentifier&) const = default;
};

}  // namespace linewatch

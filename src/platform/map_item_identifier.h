#pragma once

#include <cstdint>

namespace linewatch {

/// Names a thing on the map to the transit service.
struct MapItemIdentifier {
  std::uint64_t muid = 0;

  bool operator==(const MapItemIdentifier&) const = default;
};

}  // namespace linewatch

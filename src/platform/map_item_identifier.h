#pragma once

#include <cstdint>

namespace linewatch {

/// The identifier by which the transit service knows something on the map.
struct MapItemIdentifier {
  std::uint64_t muid = 0;

  bool operator==(const MapItemIdentifier&) const = default;
};

}  // namespace linewatch

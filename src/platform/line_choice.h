#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace linewatch {

/// The incidents of a favourite line that the user wants to see.
struct LineChoice {
  /// The stops whose notices are shown: all, those in `stopIds`, or none.
  enum class Stops : std::uint8_t { all, chosen, none };

  Stops stops = Stops::all;
  /// Ids in the line's feed; empty unless `stops` is `chosen`. A station stands for its platforms.
  std::vector<std::string> stopIds = {};
  /// The only direction wanted, 0 or 1; absent for both. Incidents that name no direction are always wanted.
  std::optional<std::uint8_t> direction = {};

  bool operator==(const LineChoice&) const = default;
};

}  // namespace linewatch

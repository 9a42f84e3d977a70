#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/favorites.h"
#include "platform/transit_line.h"
#include "platform/transit_records.h"
#include "simulation/world/world.h"

namespace linewatch::simulation {

/// The platform's records of the systems, lines, incidents and favourites of a world. Lines that share a
/// system or an incident share its record.
class WorldRecords {
 public:
  explicit WorldRecords(const World& world);

  /// Every line with its incidents, in the world's order.
  const TransitLineItems& allLines() const { return lines_; }
  /// The items of the identifiers, in the order given; unknown identifiers are left out.
  TransitLineItems linesFor(const std::vector<MapItemIdentifier>& identifiers) const;
  /// The items of the lines with these keys, in the order given; unknown keys are left out.
  TransitLineItems linesNamed(const std::vector<std::string>& keys) const;
  /// In the user's order.
  const Favorites& favorites() const { return favorites_; }

 private:
  TransitLineItems lines_;
  std::unordered_map<std::uint64_t, SharedLineItem> linesByIdentifier_;
  std::unordered_map<std::string, SharedLineItem> linesByKey_;
  Favorites favorites_;
};

}  // namespace linewatch::simulation

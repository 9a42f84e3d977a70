#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "analytics/transit_incidents_analytics_delegate.h"
#include "list/item_to_lines_map.h"
#include "list/transit_item.h"
#include "platform/transit_incident.h"
#include "platform/transit_line.h"
#include "shared/hash_mixing.h"

namespace linewatch {

/// The rows made so far in one build of the list, in the order of their creation.
class IncidentRows {
 public:
  /// `listings` is the sum of the numbers of incidents of all lines. There are at most this many rows.
  explicit IncidentRows(std::size_t listings);

  /// The incidents that have a row, each once: `items()[i]` is the row of `incidents()[i]`.
  const TransitIncidents& incidents() const { return incidents_; }
  TransitItems& items() { return items_; }
  const TransitItems& items() const { return items_; }

  /// The position of the row of the incident with this `muid`; none when it has no row.
  std::optional<std::size_t> find(std::uint64_t muid) const;
  /// Adds a row for an incident that has none yet. `line` is the first line that lists it.
  void add(const SharedIncident& incident, SharedTransitItem item, const TransitLineItem& line);
  /// Adds another line that lists the row's incident.
  void addLine(std::size_t row, const TransitLineItem& line);

  ItemToLinesMap& itemToLinesMap() { return itemToLinesMap_; }
  const ItemToLinesMap& itemToLinesMap() const { return itemToLinesMap_; }
  IncidentsToLineMapping incidentsToLineMapping() const;

 private:
  TransitIncidents incidents_;
  TransitItems items_;
  /// For each row, the first line that lists its incident.
  Lines firstLines_;
  ItemToLinesMap itemToLinesMap_;
  BuildMap<std::uint64_t, std::size_t, IdentifierHash> rowOfIncident_;
};

}  // namespace linewatch

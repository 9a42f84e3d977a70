#pragma once

#include <cstdint>
#include <optional>

#include "list/transit_list_item.h"
#include "platform/transit_line.h"
#include "shared/date.h"
#include "shared/value.h"
#include "simulation/world/world.h"

namespace linewatch::worlds {

/// What a fetch gave: line items, an error, or neither.
struct FetchModel {
  std::optional<TransitLineItems> items;
  bool failed = false;
};

/// The list that the widget must show, in the dictionary form of lists; none when it must show no list. Plain
/// and slow on purpose: it shares no code with the builders and searches every table from its start. A user
/// info holds the text of its content in place of bytes.
///
/// `maxNumberOfRows` is never 0.
Value listModel(const FetchModel& fetched, std::uint64_t maxNumberOfRows, Date now,
                const simulation::World& world);

/// The list in the same form, its user infos decoded. None for a null list.
Value formOf(const RVTransitListItem* list);

}  // namespace linewatch::worlds

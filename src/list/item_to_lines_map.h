#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include <tsl/robin_map.h>

#include "list/transit_item.h"
#include "platform/transit_line.h"

namespace linewatch {

/// Lines of the builder's input, which outlives every list of this kind.
using Lines = std::vector<const TransitLineItem*>;

/// Hashes a row for tables. `RVTransitItem::hash()` is an exclusive or, in which a title that equals its
/// secondary text cancels; here such rows hash differently.
struct TransitItemHash {
  std::size_t operator()(const SharedTransitItem& item) const;
};

/// Compares rows by value.
struct TransitItemsEqual {
  bool operator()(const SharedTransitItem& a, const SharedTransitItem& b) const { return a->isEqual(*b); }
};

/// A map whose keys are rows, compared by value. It keeps the hash of each key.
template <class T>
using TransitItemMap = tsl::robin_map<SharedTransitItem, T, TransitItemHash, TransitItemsEqual,
                                      std::allocator<std::pair<SharedTransitItem, T>>, /*StoreHash=*/true>;

/// For each row, every line that lists its incident, in the order of the lines. Rows that are equal share one
/// entry.
using ItemToLinesMap = TransitItemMap<Lines>;

}  // namespace linewatch

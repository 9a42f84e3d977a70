#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <tsl/robin_map.h>

#include "list/transit_item.h"
#include "platform/transit_line.h"

namespace linewatch {

/// Lines of the builder's input, which outlives every list of this kind.
using Lines = std::vector<const TransitLineItem*>;
using LineSpan = std::span<const TransitLineItem* const>;

/// A hash map of one build. Growing costs most of the time of a table that fills, so that it grows fourfold.
template <class Key, class T, class Hash, class Equal = std::equal_to<Key>, bool StoreHash = false>
using BuildMap = tsl::robin_map<Key, T, Hash, Equal, std::allocator<std::pair<Key, T>>, StoreHash,
                                tsl::rh::power_of_two_growth_policy<4>>;

/// The lines that list a row's incident, in their order. A single line, which most rows have, needs no memory
/// of its own.
class LinesOfRow {
 public:
  void push_back(const TransitLineItem& line) {
    if (first_ == nullptr) {
      first_ = &line;
      return;
    }
    if (!all_) all_ = std::make_unique<Lines>(Lines{first_});
    all_->push_back(&line);
  }
  LineSpan all() const { return all_ ? LineSpan(*all_) : LineSpan(&first_, first_ == nullptr ? 0 : 1); }
  bool areSeveral() const { return all_ != nullptr; }

 private:
  const TransitLineItem* first_ = nullptr;
  /// Null up to one line, then the first line too.
  std::unique_ptr<Lines> all_;
};

/// Hashes a row for tables.
struct TransitItemHash {
  std::size_t operator()(const RVTransitItem* item) const { return item->tableHash(); }
};

/// Compares rows by value.
struct TransitItemsEqual {
  bool operator()(const RVTransitItem* a, const RVTransitItem* b) const { return a->isEqual(*b); }
};

/// A map whose keys are rows, compared by value. The map does not keep its rows alive. It stores the hash of
/// each row.
template <class T>
using TransitItemMap =
    BuildMap<const RVTransitItem*, T, TransitItemHash, TransitItemsEqual, /*StoreHash=*/true>;

/// For each row, every line that lists its incident, in the order of the lines. Rows that are equal share one
/// entry.
using ItemToLinesMap = TransitItemMap<LinesOfRow>;

}  // namespace linewatch

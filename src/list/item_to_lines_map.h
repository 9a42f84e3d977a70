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

/// Lines of the builder's input. The input outlives these lists.
using Lines = std::vector<const TransitLineItem*>;
using LineSpan = std::span<const TransitLineItem* const>;

/// A hash map that is filled during one build. It grows fourfold, because growing takes most of the time of
/// filling it.
template <class Key, class T, class Hash, class Equal = std::equal_to<Key>, bool StoreHash = false>
using BuildMap = tsl::robin_map<Key, T, Hash, Equal, std::allocator<std::pair<Key, T>>, StoreHash,
                                tsl::rh::power_of_two_growth_policy<4>>;

/// The lines that list a row's incident, in the order of the input. Most rows have one line, so one line is
/// stored without an allocation.
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
  bool hasSeveral() const { return all_ != nullptr; }

 private:
  const TransitLineItem* first_ = nullptr;
  /// All lines, including the first; null while there is at most one.
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

/// For each row, the lines that list its incident, in the order of the input. Equal rows share one entry.
using ItemToLinesMap = TransitItemMap<LinesOfRow>;

}  // namespace linewatch

#pragma once

#include <cstddef>
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

/// How full a table of rows may get. Half full, as the container's default is, no longer fits the cache at
/// ten thousand rows.
inline constexpr float kMaxLoadFactor = 0.8F;

/// Hashes a row for tables.
struct TransitItemHash {
  std::size_t operator()(const SharedTransitItem& item) const { return item->tableHash(); }
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
using ItemToLinesMap = TransitItemMap<LinesOfRow>;

}  // namespace linewatch

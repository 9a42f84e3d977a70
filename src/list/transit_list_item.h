#pragma once

#include <cstddef>
#include <memory>
#include <variant>
#include <vector>

#include "list/transit_item.h"
#include "list/transit_summary_item.h"
#include "shared/object.h"

namespace linewatch {

/// The row of the compact list: none, a row that stands for itself, or one that stands for several incidents.
using SummaryItem =
    std::variant<std::monostate, SharedTransitItem, std::shared_ptr<const RVTransitSummaryItem>>;

bool areEqual(const SummaryItem& a, const SummaryItem& b);

/// The whole list: its one row when compact, and its rows from top to bottom when expanded (none: it does not
/// expand). Immutable; two are equal when all their rows are.
class RVTransitListItem : public Object {
 public:
  /// A row that is null is no row: the list holds none.
  RVTransitListItem(SummaryItem summaryItem, TransitItems expandedItems);

  const SummaryItem& summaryItem() const { return summaryItem_; }
  const TransitItems& expandedItems() const { return expandedItems_; }

  bool isEqual(const Object& other) const override;
  bool isEqualToListItem(const RVTransitListItem& other) const;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  SummaryItem summaryItem_;
  TransitItems expandedItems_;
};

}  // namespace linewatch

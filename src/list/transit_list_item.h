#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "list/transit_item.h"
#include "list/transit_summary_item.h"
#include "shared/object.h"

namespace linewatch {

/// The row of the compact list: none, a single row, or the summary of several incidents.
using SummaryItem =
    std::variant<std::monostate, SharedTransitItem, std::shared_ptr<const RVTransitSummaryItem>>;

bool areEqual(const SummaryItem& a, const SummaryItem& b);

/// The whole list: its one row when compact, and its rows from top to bottom when expanded. Immutable; two
/// lists are equal when all their rows are.
class RVTransitListItem : public Object {
 public:
  /// `expandedItems` may be absent, which is unequal to empty. Null rows are left out.
  RVTransitListItem(SummaryItem summaryItem, std::optional<TransitItems> expandedItems);

  const SummaryItem& summaryItem() const { return summaryItem_; }
  const std::optional<TransitItems>& expandedItems() const { return expandedItems_; }
  /// Whether there is anything to show beyond the compact row.
  bool hasExpandedItems() const { return expandedItems_ && !expandedItems_->empty(); }

  bool isEqual(const Object& other) const override;
  bool isEqualToListItem(const RVTransitListItem& other) const;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  SummaryItem summaryItem_;
  std::optional<TransitItems> expandedItems_;
};

}  // namespace linewatch

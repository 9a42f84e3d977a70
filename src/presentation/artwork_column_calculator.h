#pragma once

#include <functional>
#include <vector>

#include "list/transit_item.h"
#include "presentation/artwork_width_calculator.h"

namespace linewatch {

/// Given an item and the artwork that is to be shown in place of its own: the item with that artwork, or null
/// to keep the item as it is.
using DownSizingBlock =
    std::function<SharedTransitItem(const SharedTransitItem& item, const SharedSizedArtwork& smallerArtwork)>;

/// Fits the artworks of items into one column, and remembers its last answer. Main thread.
class RVTransitItemArtworkColumnCalculator {
 public:
  /// The items, those whose artwork has to be smaller rebuilt by `downSizingBlock`, which may be empty; the
  /// other items are the very objects given. Items without a line's or system's artwork do not count for the
  /// column. The column's width goes to `outArtworkColumnWidth`, unless that is null.
  ///
  /// The same question as the last time (items by value, parameters exactly) is answered without drawing
  /// anything.
  TransitItems itemsFromItems(const TransitItems& items,
                              const ArtworkWidthCalculatorSizeParameter& sizeParameter,
                              double* outArtworkColumnWidth, const DownSizingBlock& downSizingBlock);

 private:
  TransitItems _itemsFromItems(const TransitItems& items,
                               const ArtworkWidthCalculatorSizeParameter& sizeParameter,
                               double* outArtworkColumnWidth, const DownSizingBlock& downSizingBlock);

  ArtworkWidthCalculatorSizeParameter previousSizeParameter_;
  double cachedArtworkColumnWidthForPreviousWidth_ = 0;
  TransitItems cachedOriginalItems_;
  TransitItems cachedItemsForPreviousWidth_;
};

}  // namespace linewatch

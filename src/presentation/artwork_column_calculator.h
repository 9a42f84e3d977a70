#pragma once

#include <functional>
#include <vector>

#include "list/transit_item.h"
#include "presentation/artwork_width_calculator.h"

namespace linewatch {

/// Returns the item with the smaller artwork, or null to keep the item as it is.
using DownSizingBlock =
    std::function<SharedTransitItem(const SharedTransitItem& item, const SharedSizedArtwork& smallerArtwork)>;

/// Fits the artworks of items into one column and keeps its last result. Main thread.
class RVTransitItemArtworkColumnCalculator {
 public:
  /// Returns the items in the same order. `downSizingBlock` makes a new item when an artwork has to shrink;
  /// without a block, or when the artwork fits, the given object is returned. Items without the artwork of a
  /// line or a system do not affect the column. Writes the column's width to `outArtworkColumnWidth`, unless
  /// that is null.
  ///
  /// When the items (compared by value) and the parameters are those of the last call, nothing is drawn.
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

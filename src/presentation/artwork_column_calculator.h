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
  /// The same items in order. `downSizingBlock`, which may be empty, rebuilds those whose artwork has to be
  /// smaller; all others are the very objects given. Items without a line's or system's artwork do not count
  /// for the column. Writes the column's width to `outArtworkColumnWidth`, unless that is null.
  ///
  /// A call with the items (by value) and the parameters (exactly) of the last call draws nothing.
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

#include "presentation/artwork_column_calculator.h"

#include <cstddef>
#include <utility>

#include "shared/rova_map.h"

namespace linewatch {

namespace {

/// Null when the item does not have the artwork of a line or a system.
SharedSizedArtwork sizedArtworkOf(const SharedTransitItem& item) {
  if (!item || !item->artwork()) return nullptr;
  return std::dynamic_pointer_cast<const SizedTransitArtwork>(item->artwork()->artworkSource());
}

/// Rebuilds every item whose artwork has a smaller replacement. Several items can have equal artworks,
/// because a line can have several incidents.
TransitItems withSmallerArtworks(TransitItems items, const SmallerArtworks& smallerArtworks,
                                 const DownSizingBlock& downSizingBlock) {
  for (SharedTransitItem& item : items) {
    const SharedSizedArtwork artwork = sizedArtworkOf(item);
    if (!artwork) continue;
    const auto smaller = smallerArtworks.find(artwork);
    if (smaller == smallerArtworks.end()) continue;
    if (SharedTransitItem rebuilt = downSizingBlock(item, smaller->second)) item = std::move(rebuilt);
  }
  return items;
}

}  // namespace

TransitItems RVTransitItemArtworkColumnCalculator::itemsFromItems(
    const TransitItems& items, const ArtworkWidthCalculatorSizeParameter& sizeParameter,
    double* outArtworkColumnWidth, const DownSizingBlock& downSizingBlock) {
  if (sizeParameter != previousSizeParameter_ || !areEqual(items, cachedOriginalItems_)) {
    return _itemsFromItems(items, sizeParameter, outArtworkColumnWidth, downSizingBlock);
  }
  if (outArtworkColumnWidth != nullptr) *outArtworkColumnWidth = cachedArtworkColumnWidthForPreviousWidth_;
  return cachedItemsForPreviousWidth_;
}

TransitItems RVTransitItemArtworkColumnCalculator::_itemsFromItems(
    const TransitItems& items, const ArtworkWidthCalculatorSizeParameter& sizeParameter,
    double* outArtworkColumnWidth, const DownSizingBlock& downSizingBlock) {
  auto artworks =
      RovaMap(items, [](const SharedTransitItem& item, std::size_t) { return sizedArtworkOf(item); });
  const SmallerArtworks smallerArtworks =
      TransitDirectionsListArtworkWidthCalculator(std::move(artworks), sizeParameter)
          .calculateArtworkViewWidthAndArtworkSizes(&cachedArtworkColumnWidthForPreviousWidth_);

  cachedItemsForPreviousWidth_ = smallerArtworks.empty() || !downSizingBlock
                                     ? items
                                     : withSmallerArtworks(items, smallerArtworks, downSizingBlock);
  cachedOriginalItems_ = items;
  previousSizeParameter_ = sizeParameter;
  if (outArtworkColumnWidth != nullptr) *outArtworkColumnWidth = cachedArtworkColumnWidthForPreviousWidth_;
  return cachedItemsForPreviousWidth_;
}

}  // namespace linewatch

#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "ui/artwork_image_source.h"
#include "ui/layout/geometry.h"

namespace linewatch {

/// The limits of the trailing artwork column that all rows of a list share, in points.
struct ArtworkWidthCalculatorSizeParameter {
  /// The column's width when every artwork fits into it; the column is never narrower.
  double defaultArtworkViewWidth = 0;
  double maxArtworkViewWidth = 0;
  /// Space around an artwork in the column; only `left` and `right` are used.
  ui::EdgeInsets artworkInsets;

  bool operator==(const ArtworkWidthCalculatorSizeParameter&) const = default;
};

using SharedSizedArtwork = std::shared_ptr<const SizedTransitArtwork>;

/// Compares artworks by value: equal artworks are shown at the same size.
struct SizedArtworkHash {
  std::size_t operator()(const SharedSizedArtwork& artwork) const { return artwork->hash(); }
};
struct SizedArtworkEqual {
  bool operator()(const SharedSizedArtwork& a, const SharedSizedArtwork& b) const { return a->isEqual(*b); }
};
/// Maps artworks to their smaller replacements.
using SmallerArtworks =
    std::unordered_map<SharedSizedArtwork, SharedSizedArtwork, SizedArtworkHash, SizedArtworkEqual>;

/// Fits artworks into one column. The column is as wide as the widest artwork with its insets, within the
/// limits of the size parameter. An artwork wider than the widest column shrinks by one shield size at a
/// time. One that is still too wide at the smallest size is shown at that size and does not count for the
/// column. Main thread.
class TransitDirectionsListArtworkWidthCalculator {
 public:
  /// No artwork may be null. A negative default width becomes 50; a maximum below the default becomes the
  /// default.
  TransitDirectionsListArtworkWidthCalculator(std::vector<SharedSizedArtwork> artworks,
                                              const ArtworkWidthCalculatorSizeParameter& sizeParameter);

  const std::vector<SharedSizedArtwork>& artworks() const { return artworks_; }
  const ArtworkWidthCalculatorSizeParameter& sizeParameter() const { return sizeParameter_; }

  /// Draws each distinct artwork once at each size tried. Writes the column's width to `artworkViewWidth`,
  /// unless that is null.
  SmallerArtworks calculateArtworkViewWidthAndArtworkSizes(double* artworkViewWidth) const;

 private:
  std::vector<SharedSizedArtwork> artworks_;
  ArtworkWidthCalculatorSizeParameter sizeParameter_;
};

}  // namespace linewatch

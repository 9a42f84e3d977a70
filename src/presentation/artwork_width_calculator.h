#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "ui/artwork_image_source.h"
#include "ui/layout/geometry.h"

namespace linewatch {

/// What the trailing column that all rows of a list share may measure, in points.
struct ArtworkWidthCalculatorSizeParameter {
  /// The column's width when every artwork fits into it; the column is never narrower.
  double defaultArtworkViewWidth = 0;
  double maxArtworkViewWidth = 0;
  /// Space around an artwork in the column; `left` and `right` count, `top` and `bottom` do not.
  ui::EdgeInsets artworkInsets;

  bool operator==(const ArtworkWidthCalculatorSizeParameter&) const = default;
};

using SharedSizedArtwork = std::shared_ptr<const SizedTransitArtwork>;

/// Finds by value, as all artworks that are equal are shown at one size.
struct SizedArtworkHash {
  std::size_t operator()(const SharedSizedArtwork& artwork) const { return artwork->hash(); }
};
struct SizedArtworkEqual {
  bool operator()(const SharedSizedArtwork& a, const SharedSizedArtwork& b) const { return a->isEqual(*b); }
};
/// From artworks to the smaller ones that are shown in their place.
using SmallerArtworks =
    std::unordered_map<SharedSizedArtwork, SharedSizedArtwork, SizedArtworkHash, SizedArtworkEqual>;

/// Fits artworks into one column. The column is as wide as the widest artwork with its insets, within the
/// limits of the size parameter. An artwork wider than the largest column is shown one shield size smaller,
/// again and again; one that is still too wide at the smallest size stays at it and does not count for the
/// column. Main thread.
class TransitDirectionsListArtworkWidthCalculator {
 public:
  /// No artwork is null. Unusable parameters are made usable: a negative default width becomes 50, and a
  /// largest width below the default becomes the default.
  TransitDirectionsListArtworkWidthCalculator(std::vector<SharedSizedArtwork> artworks,
                                              const ArtworkWidthCalculatorSizeParameter& sizeParameter);

  const std::vector<SharedSizedArtwork>& artworks() const { return artworks_; }
  const ArtworkWidthCalculatorSizeParameter& sizeParameter() const { return sizeParameter_; }

  /// Draws every distinct artwork once at every size that it is tried at. The width of the column goes to
  /// `artworkViewWidth`, unless that is null.
  SmallerArtworks calculateArtworkViewWidthAndArtworkSizes(double* artworkViewWidth) const;

 private:
  std::vector<SharedSizedArtwork> artworks_;
  ArtworkWidthCalculatorSizeParameter sizeParameter_;
};

}  // namespace linewatch

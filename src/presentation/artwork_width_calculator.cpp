#include "presentation/artwork_width_calculator.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "platform/platform.h"
#include "platform/ui/image.h"
#include "platform/ui/interface_settings.h"

namespace linewatch {

namespace {

constexpr double kDefaultWidthInsteadOfNegative = 50.0;
/// An artwork of a smaller size than this is not made smaller any more.
constexpr std::int64_t kSmallestShrinkableSize = -3;

ArtworkWidthCalculatorSizeParameter sanitized(ArtworkWidthCalculatorSizeParameter parameter) {
  double& defaultWidth = parameter.defaultArtworkViewWidth;
  double& maxWidth = parameter.maxArtworkViewWidth;
  if (defaultWidth > 0 && maxWidth >= defaultWidth) return parameter;
  if (defaultWidth < 0) defaultWidth = kDefaultWidthInsteadOfNegative;
  if (maxWidth < defaultWidth) maxWidth = defaultWidth;
  return parameter;
}

SharedSizedArtwork oneSizeSmaller(const SizedTransitArtwork& artwork) {
  return std::make_shared<const SizedTransitArtwork>(artwork.artworkDataSource(), artwork.shieldSize() - 1,
                                                     artwork.artworkCache());
}

/// Widths of artworks, each drawn once.
class DrawnWidths {
 public:
  explicit DrawnWidths(double displayScale) : displayScale_(displayScale) {}

  double of(const SharedSizedArtwork& artwork) {
    const auto [entry, isNew] = widths_.try_emplace(artwork, 0.0);
    if (isNew) {
      if (const auto image = artwork->image(displayScale_)) entry->second = image->size().width;
    }
    return entry->second;
  }

 private:
  double displayScale_;
  SizedArtworkMap<double> widths_;
};

/// Fits one artwork after the other.
class Fitting {
 public:
  Fitting(const ArtworkWidthCalculatorSizeParameter& parameter, double displayScale)
      : parameter_(parameter), widths_(displayScale) {}

  void fit(const SharedSizedArtwork& artwork) {
    if (const auto [place, isNew] = fitted_.insert({artwork, nullptr}); isNew)
      place->second = fittingSize(artwork);
  }

  /// The widest artwork that fits, with its insets; absent when none does.
  std::optional<double> widest() const { return widest_; }
  SmallerArtworks smallerArtworks() && {
    std::erase_if(fitted_, [](const auto& entry) { return entry.first == entry.second; });
    return std::move(fitted_);
  }

 private:
  SharedSizedArtwork fittingSize(SharedSizedArtwork artwork) {
    double width = widthInColumn(artwork);
    while (!fits(width)) {
      if (artwork->shieldSize() < kSmallestShrinkableSize) return artwork;
      artwork = oneSizeSmaller(*artwork);
      width = widthInColumn(artwork);
    }
    if (!widest_ || width > *widest_) widest_ = width;
    return artwork;
  }

  double widthInColumn(const SharedSizedArtwork& artwork) {
    return widths_.of(artwork) + parameter_.artworkInsets.left + parameter_.artworkInsets.right;
  }
  bool fits(double width) const {
    return width <= parameter_.defaultArtworkViewWidth || width <= parameter_.maxArtworkViewWidth;
  }

  const ArtworkWidthCalculatorSizeParameter& parameter_;
  DrawnWidths widths_;
  /// What is shown in the place of each distinct artwork; itself where it fits as it is.
  SmallerArtworks fitted_;
  std::optional<double> widest_;
};

}  // namespace

TransitDirectionsListArtworkWidthCalculator::TransitDirectionsListArtworkWidthCalculator(
    std::vector<SharedSizedArtwork> artworks, const ArtworkWidthCalculatorSizeParameter& sizeParameter)
    : artworks_(std::move(artworks)), sizeParameter_(sanitized(sizeParameter)) {}

// Always the artwork that is the widest at the moment shrinks, until the widest that is left fits. That comes
// to the same as fitting each by itself, without sorting: none stops being too wide before its own width is
// small enough, and none shrinks further once it is.
SmallerArtworks TransitDirectionsListArtworkWidthCalculator::calculateArtworkViewWidthAndArtworkSizes(
    double* artworkViewWidth) const {
  Fitting fitting(sizeParameter_, platform().interfaceSettings().displayScale());
  for (const SharedSizedArtwork& artwork : artworks_) fitting.fit(artwork);

  if (artworkViewWidth != nullptr) {
    const double defaultWidth = sizeParameter_.defaultArtworkViewWidth;
    const std::optional<double> widest = fitting.widest();
    *artworkViewWidth = !widest || *widest <= defaultWidth ? defaultWidth : *widest;
  }
  return std::move(fitting).smallerArtworks();
}

}  // namespace linewatch

#include "presentation/artwork_width_calculator.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/platform.h"
#include "ui/artwork_cache.h"
#include "ui/image.h"
#include "ui/interface_settings.h"
#include "ui/text_style.h"

namespace linewatch {

namespace {

constexpr double kDefaultWidthInsteadOfNegative = 50.0;
/// An artwork below this size is not shrunk.
constexpr std::int64_t kSmallestShrinkableSize = -3;

ArtworkWidthCalculatorSizeParameter sanitized(ArtworkWidthCalculatorSizeParameter parameter) {
  double& defaultWidth = parameter.defaultArtworkViewWidth;
  double& maxWidth = parameter.maxArtworkViewWidth;
  if (defaultWidth > 0 && maxWidth >= defaultWidth) return parameter;
  if (defaultWidth < 0) defaultWidth = kDefaultWidthInsteadOfNegative;
  if (maxWidth < defaultWidth) maxWidth = defaultWidth;
  return parameter;
}

/// The cache draws each artwork once at each size.
double drawnWidth(const SizedTransitArtwork& artwork, const ArtworkSize& size) {
  if (!artwork.artworkDataSource() || !artwork.artworkCache()) return 0;
  const auto image = artwork.artworkCache()->image(*artwork.artworkDataSource(), size);
  return image ? image->size().width : 0;
}

/// Fits artworks one by one.
class Fitting {
 public:
  Fitting(const ArtworkWidthCalculatorSizeParameter& parameter, const ui::InterfaceSettings& settings,
          std::size_t count)
      : parameter_(parameter),
        displayScale_(settings.displayScale()),
        growth_(ui::artworkGrowth(settings.textSizeCategory())) {
    smallerArtworks_.reserve(count);
  }

  void fit(const SharedSizedArtwork& artwork) {
    if (smallerArtworks_.contains(artwork)) return;
    const std::int64_t size = fittingSize(*artwork);
    if (size == artwork->shieldSize()) return;
    smallerArtworks_[artwork] = std::make_shared<const SizedTransitArtwork>(artwork->artworkDataSource(),
                                                                            size, artwork->artworkCache());
  }

  /// The width of the widest artwork that fits, insets included; absent when none fits.
  std::optional<double> widest() const { return widest_; }
  SmallerArtworks smallerArtworks() && { return std::move(smallerArtworks_); }

 private:
  std::int64_t fittingSize(const SizedTransitArtwork& artwork) {
    std::int64_t size = artwork.shieldSize();
    double width = widthInColumn(drawnWidth(artwork, {size, displayScale_, growth_}));
    while (!fits(width)) {
      if (size < kSmallestShrinkableSize) return size;
      --size;
      width = widthInColumn(drawnWidth(artwork, {size, displayScale_, growth_}));
    }
    if (!widest_ || width > *widest_) widest_ = width;
    return size;
  }

  double widthInColumn(double width) const {
    return width + parameter_.artworkInsets.left + parameter_.artworkInsets.right;
  }
  bool fits(double width) const {
    return width <= parameter_.defaultArtworkViewWidth || width <= parameter_.maxArtworkViewWidth;
  }

  const ArtworkWidthCalculatorSizeParameter& parameter_;
  double displayScale_;
  double growth_;
  SmallerArtworks smallerArtworks_;
  std::optional<double> widest_;
};

}  // namespace

TransitDirectionsListArtworkWidthCalculator::TransitDirectionsListArtworkWidthCalculator(
    std::vector<SharedSizedArtwork> artworks, const ArtworkWidthCalculatorSizeParameter& sizeParameter)
    : artworks_(std::move(artworks)), sizeParameter_(sanitized(sizeParameter)) {}

// The rule is: while the widest artwork does not fit, it shrinks by one step. Fitting each artwork by itself
// gives the same result without sorting, because every artwork that is too wide is shrunk in the end and an
// artwork that fits is never shrunk.
SmallerArtworks TransitDirectionsListArtworkWidthCalculator::calculateArtworkViewWidthAndArtworkSizes(
    double* artworkViewWidth) const {
  Fitting fitting(sizeParameter_, platform().interfaceSettings(), artworks_.size());
  for (const SharedSizedArtwork& artwork : artworks_) fitting.fit(artwork);

  if (artworkViewWidth != nullptr) {
    const double defaultWidth = sizeParameter_.defaultArtworkViewWidth;
    const std::optional<double> widest = fitting.widest();
    *artworkViewWidth = !widest || *widest <= defaultWidth ? defaultWidth : *widest;
  }
  return std::move(fitting).smallerArtworks();
}

}  // namespace linewatch

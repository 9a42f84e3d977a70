#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "simulation/roles/simulated_artwork.h"
#include "ui/artwork_cache.h"
#include "ui/artwork_image_source.h"

namespace linewatch {

/// Draws shields like the simulation does and counts each drawing.
class CountingShieldManager final : public ShieldManager {
 public:
  std::shared_ptr<const ui::Image> image(const ShieldDataSource& shield, std::optional<double> widthAtStep3,
                                         const ArtworkSize& size) override {
    ++drawn;
    scales[size.scale] += 1;
    const std::string text = shield.shieldText.value_or("");
    return std::make_shared<const simulation::SimulatedArtworkImage>(text, widthAtStep3.value_or(10),
                                                                     size.step);
  }

  std::size_t drawn = 0;
  std::map<double, std::size_t> scales;
};

/// Makes caches and counts their drawings.
struct CountedArtworks {
  std::shared_ptr<CountingShieldManager> shields = std::make_shared<CountingShieldManager>();

  /// A new, empty cache each time.
  std::shared_ptr<ArtworkDataSourceCache> makeCache() const {
    return std::make_shared<ArtworkDataSourceCache>(std::make_shared<TransitArtworkManager>(
        shields, std::make_shared<simulation::SimulatedIconManager>()));
  }
};

inline SharedArtwork shieldOfWidth(double width, std::string text = "S") {
  TransitArtworkDataSource artwork;
  artwork.artworkSourceType = kArtworkSourceShield;
  artwork.shieldDataSource = ShieldDataSource{1, std::move(text), std::nullopt, std::nullopt};
  artwork.intrinsicWidth = width;
  return std::make_shared<const TransitArtworkDataSource>(std::move(artwork));
}

inline std::shared_ptr<const SizedTransitArtwork> sizedArtwork(
    double width, const std::shared_ptr<ArtworkDataSourceCache>& cache, std::int64_t size = 3,
    std::string text = "S") {
  return std::make_shared<const SizedTransitArtwork>(shieldOfWidth(width, std::move(text)), size, cache);
}

}  // namespace linewatch

#include "ui/artwork_cache.h"

#include <algorithm>
#include <utility>

namespace linewatch {

namespace {

/// The steps from the size of a row down to the smallest size.
constexpr std::size_t kSizeSteps = 8;

}  // namespace

using Picture = std::shared_ptr<const ui::Image>;

Picture TransitArtworkManager::icon(const TransitArtworkDataSource& artwork, const ArtworkSize& size) const {
  if (!artwork.iconDataSource) return nullptr;
  return iconManager_->image(*artwork.iconDataSource, artwork.intrinsicWidth, size);
}

Picture TransitArtworkManager::shield(const std::optional<ShieldDataSource>& shield,
                                      const TransitArtworkDataSource& artwork,
                                      const ArtworkSize& size) const {
  return shield ? shieldManager_->image(*shield, artwork.intrinsicWidth, size) : nullptr;
}

Picture TransitArtworkManager::image(const TransitArtworkDataSource& artwork, const ArtworkSize& size) const {
  Picture picture = imageWithoutBadge(artwork, size);
  return picture && artwork.hasRoutingIncidentBadge
             ? shieldManager_->withIncidentBadge(std::move(picture), size)
             : picture;
}

Picture TransitArtworkManager::imageWithoutBadge(const TransitArtworkDataSource& artwork,
                                                 const ArtworkSize& size) const {
  const bool iconFirst = artwork.artworkSourceType == kArtworkSourceIcon;
  Picture picture = iconFirst ? icon(artwork, size) : shield(artwork.shieldDataSource, artwork, size);
  if (!picture) picture = shield(artwork.iconFallbackShieldDataSource, artwork, size);
  if (!picture) picture = iconFirst ? shield(artwork.shieldDataSource, artwork, size) : icon(artwork, size);
  return picture ? picture : blank(artwork, size);
}

Picture TransitArtworkManager::blank(const TransitArtworkDataSource& artwork, const ArtworkSize& size) const {
  if (artwork.shieldDataSource || artwork.iconDataSource || artwork.iconFallbackShieldDataSource)
    return nullptr;
  return artwork.artworkSourceType == kArtworkSourceIcon
             ? iconManager_->image({}, artwork.intrinsicWidth, size)
             : shieldManager_->image({}, artwork.intrinsicWidth, size);
}

void TransitArtworkManager::purge() {
  shieldManager_->purge();
  iconManager_->purge();
}

Picture ArtworkDataSourceCache::image(const TransitArtworkDataSource& artwork, const ArtworkSize& size) {
  std::vector<Drawn>& drawn = images_[artwork];
  const auto known =
      std::find_if(drawn.begin(), drawn.end(), [&](const Drawn& each) { return each.size == size; });
  if (known != drawn.end()) return known->image;
  // A second size is asked for to find one that fits; smaller ones usually follow.
  if (drawn.size() == 1) drawn.reserve(kSizeSteps);
  return drawn.emplace_back(Drawn{size, manager_->image(artwork, size)}).image;
}

void ArtworkDataSourceCache::purge() {
  images_.clear();
  manager_->purge();
}

}  // namespace linewatch

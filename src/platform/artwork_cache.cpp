#include "platform/artwork_cache.h"

#include <functional>

namespace linewatch {

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

std::size_t ArtworkDataSourceCache::Hash::operator()(const Key& key) const {
  return hash(key.artwork) ^ (std::hash<std::int64_t>{}(key.size.step) << 1) ^
         std::hash<double>{}(key.size.scale);
}

Picture ArtworkDataSourceCache::image(const TransitArtworkDataSource& artwork, const ArtworkSize& size) {
  Key key{artwork, size};
  const auto known = images_.find(key);
  if (known != images_.end()) return known->second;
  Picture picture = manager_->image(artwork, size);
  images_.emplace(std::move(key), picture);
  return picture;
}

void ArtworkDataSourceCache::purge() {
  images_.clear();
  manager_->purge();
}

}  // namespace linewatch

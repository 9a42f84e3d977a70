#include "platform/artwork.h"

#include <functional>

namespace linewatch {

namespace {

template <class T>
void mix(std::size_t& seed, const T& value) {
  seed = seed * 1099511628211ULL + std::hash<T>{}(value);
}

void mixShield(std::size_t& seed, const std::optional<ShieldDataSource>& shield) {
  mix(seed, shield.has_value());
  if (!shield) return;
  mix(seed, shield->shieldType);
  mix(seed, shield->shieldText);
  mix(seed, shield->shieldColorString);
}

}  // namespace

std::size_t hash(const TransitArtworkDataSource& artwork) {
  std::size_t seed = 0;
  mix(seed, artwork.artworkSourceType);
  mix(seed, artwork.artworkUseType);
  mixShield(seed, artwork.shieldDataSource);
  if (artwork.iconDataSource) {
    mix(seed, artwork.iconDataSource->iconType);
    mix(seed, artwork.iconDataSource->defaultTransitType);
  }
  mixShield(seed, artwork.iconFallbackShieldDataSource);
  mix(seed, artwork.accessibilityText);
  return seed;
}

std::size_t hashOfAllFields(const TransitArtworkDataSource& artwork) {
  std::size_t seed = hash(artwork);
  for (const auto* shield : {&artwork.shieldDataSource, &artwork.iconFallbackShieldDataSource}) {
    if (*shield) mix(seed, (*shield)->textColorString);
  }
  if (const auto& icon = artwork.iconDataSource) {
    mix(seed, icon->cartoID);
    mix(seed, icon->iconAttributeKey);
    mix(seed, icon->iconAttributeValue);
  }
  mix(seed, artwork.hasRoutingIncidentBadge);
  mix(seed, artwork.intrinsicWidth);
  return seed;
}

}  // namespace linewatch

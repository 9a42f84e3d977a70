#include "list/transit_artwork_equality.h"

namespace linewatch {

namespace {

bool sameShield(const std::optional<ShieldDataSource>& a, const std::optional<ShieldDataSource>& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return a->shieldType == b->shieldType && a->shieldText == b->shieldText &&
         a->shieldColorString == b->shieldColorString;
}

}  // namespace

bool TransitArtworkDataSourceIsEqual(const TransitArtworkDataSource* a, const TransitArtworkDataSource* b) {
  if (a == b) return true;
  if (a == nullptr || b == nullptr) return false;
  return a->artworkSourceType == b->artworkSourceType && a->artworkUseType == b->artworkUseType &&
         sameShield(a->shieldDataSource, b->shieldDataSource) && a->iconDataSource == b->iconDataSource &&
         sameShield(a->iconFallbackShieldDataSource, b->iconFallbackShieldDataSource) &&
         a->hasRoutingIncidentBadge == b->hasRoutingIncidentBadge &&
         a->accessibilityText == b->accessibilityText;
}

}  // namespace linewatch

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "activity/openable.h"
#include "list/configured_artwork.h"
#include "shared/object.h"
#include "shared/shared_text.h"

namespace linewatch {

/// One row of the list: an incident, good service, the overflow of incidents, no favourites, or an error.
/// Immutable.
class RVTransitItem : public Object {
 public:
  /// Texts, artwork and openable may each be absent; a row without an openable opens nothing.
  /// `displayArtwork` tells whether the row shows an artwork at all.
  RVTransitItem(SharedText primaryText, SharedText secondaryText,
                std::shared_ptr<const RVConfiguredArtwork> artwork, bool displayArtwork,
                std::shared_ptr<const RVOpenable> openable);

  const OptionalText& primaryText() const { return *primaryText_; }
  const OptionalText& secondaryText() const { return *secondaryText_; }
  /// The primary text, for another row to share.
  const SharedText& sharedPrimaryText() const { return primaryText_; }
  const std::shared_ptr<const RVConfiguredArtwork>& artwork() const { return artwork_; }
  bool displayArtwork() const { return displayArtwork_; }
  const std::shared_ptr<const RVOpenable>& openable() const { return openable_; }

  /// A new item with the same values. Allocation zones are not supported.
  std::shared_ptr<const RVTransitItem> copyWithZone() const;

  /// Only two objects of exactly this class can be equal.
  bool isEqual(const Object& other) const override;
  bool isEqualToTransitItem(const RVTransitItem& other) const;
  /// The exclusive or of the hashes of all values. The hashes of equal primary and secondary texts cancel.
  std::size_t hash() const override;
  /// A hash for tables of rows, in which equal texts do not cancel. Computed at construction.
  std::size_t tableHash() const { return tableHash_; }
  std::string description() const override;

 private:
  SharedText primaryText_;
  SharedText secondaryText_;
  std::shared_ptr<const RVConfiguredArtwork> artwork_;
  bool displayArtwork_;
  std::shared_ptr<const RVOpenable> openable_;
  std::size_t tableHash_;
};

using SharedTransitItem = std::shared_ptr<const RVTransitItem>;
using TransitItems = std::vector<SharedTransitItem>;

/// Whether the rows are equal by value, one by one.
bool areEqual(const TransitItems& a, const TransitItems& b);

}  // namespace linewatch

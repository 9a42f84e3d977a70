#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "activity/user_activity_data.h"
#include "platform/artwork.h"
#include "shared/object.h"

namespace linewatch {

using TransitArtworks = std::vector<SharedArtwork>;

/// The compact row that sums up two or more incidents. Immutable.
class RVTransitSummaryItem : public Object {
 public:
  /// Each argument may be absent. `artworks` holds the distinct artworks of the affected lines in display
  /// order.
  RVTransitSummaryItem(std::optional<std::string> text, std::optional<TransitArtworks> artworks,
                       std::shared_ptr<const RVUserActivityData> userActivityData);

  const std::optional<std::string>& primaryText() const { return primaryText_; }
  const std::optional<TransitArtworks>& artworks() const { return artworks_; }
  const std::shared_ptr<const RVUserActivityData>& userActivityData() const { return userActivityData_; }

  bool isEqual(const Object& other) const override;
  /// Compares the artworks pairwise with `TransitArtworkDataSourceIsEqual`. An absent list is unequal to an
  /// empty one.
  bool isEqualToSummaryItem(const RVTransitSummaryItem& other) const;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  std::optional<std::string> primaryText_;
  std::optional<TransitArtworks> artworks_;
  std::shared_ptr<const RVUserActivityData> userActivityData_;
};

}  // namespace linewatch

#pragma once

#include <cstdint>
#include <memory>

#include "analytics/transit_incidents_analytics_delegate.h"
#include "incidents/result.h"
#include "list/transit_list_item.h"

namespace linewatch {

class ArtworkDataSourceCache;

/// Builds one list. Main thread.
class RVTransitItemDataSourceBuilder {
 public:
  virtual ~RVTransitItemDataSourceBuilder() = default;
  /// Builds the list on the first call and returns the same object on every later call.
  virtual std::shared_ptr<const RVTransitListItem> listItem() = 0;
};

/// The row limit that means no limit.
inline constexpr std::uint64_t kNoRowLimit = ~std::uint64_t{0};

/// A new builder for the outcome of a fetch: the error builder for a failure, the incidents builder for a
/// success, null for a result that is neither. `maxNumberOfItems` 0 means no limit; `artworkCache` and
/// `analytics` may be null.
std::unique_ptr<RVTransitItemDataSourceBuilder> RVTransitDataSourceBuilderForResult(
    const RVResult& result, std::uint64_t maxNumberOfItems,
    std::shared_ptr<ArtworkDataSourceCache> artworkCache,
    std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics);

}  // namespace linewatch

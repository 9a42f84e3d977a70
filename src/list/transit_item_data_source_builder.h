#pragma once

#include <cstdint>
#include <memory>

#include "analytics/transit_incidents_analytics_delegate.h"
#include "incidents/result.h"
#include "list/transit_list_item.h"

namespace linewatch {

class ArtworkDataSourceCache;

/// Makes one list. Main thread.
class RVTransitItemDataSourceBuilder {
 public:
  virtual ~RVTransitItemDataSourceBuilder() = default;
  /// Built on the first call; every later call gives the same object.
  virtual std::shared_ptr<const RVTransitListItem> listItem() = 0;
};

/// A row limit that limits nothing.
inline constexpr std::uint64_t kNoRowLimit = ~std::uint64_t{0};

/// A new builder for the outcome of a fetch: of the error row for a failure, of the incidents for a success,
/// null for a result that is neither. `maxNumberOfItems` 0 means no limit; `artworkCache` and `analytics` may
/// be null.
std::unique_ptr<RVTransitItemDataSourceBuilder> RVTransitDataSourceBuilderForResult(
    const RVResult& result, std::uint64_t maxNumberOfItems,
    std::shared_ptr<ArtworkDataSourceCache> artworkCache,
    std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics);

}  // namespace linewatch

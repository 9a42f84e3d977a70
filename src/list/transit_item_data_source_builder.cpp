#include "list/transit_item_data_source_builder.h"

#include <utility>

#include "list/transit_incident_data_source_error_builder.h"
#include "list/transit_incidents_data_source_builder.h"

namespace linewatch {

std::unique_ptr<RVTransitItemDataSourceBuilder> RVTransitDataSourceBuilderForResult(
    const RVResult& result, std::uint64_t maxNumberOfItems,
    std::shared_ptr<ArtworkDataSourceCache> artworkCache,
    std::shared_ptr<RVTransitIncidentsAnalyticsDelegate> analytics) {
  if (result.error()) return std::make_unique<RVTransitIncidentDataSourceErrorBuilder>(*result.error());
  if (!result.successObject()) return nullptr;
  return std::make_unique<RVTransitIncidentsDataSourceBuilder>(result.successObject(), maxNumberOfItems,
                                                               std::move(artworkCache), std::move(analytics));
}

}  // namespace linewatch

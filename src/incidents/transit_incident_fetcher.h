#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "incidents/transit_incident_fetcher_request.h"
#include "platform/favorites.h"
#include "platform/transit_line.h"
#include "shared/error.h"

namespace linewatch {

/// Fetches the user's favourite lines with their current incidents. Serves one fetch. The fetch keeps it
/// alive until it ends.
class RVTransitIncidentFetcher : public std::enable_shared_from_this<RVTransitIncidentFetcher> {
 public:
  using Handler = RVTransitIncidentFetcherRequest::Handler;

  static std::shared_ptr<RVTransitIncidentFetcher> make();

  /// Starts the fetch and returns. The handler, which may be empty, is called on the main thread when the
  /// fetch ends, never before this call has returned. The result is the service's line items in the service's
  /// order, an empty list when no favourite is a line, or the error of the service or of reading the
  /// favourites. Main thread.
  std::shared_ptr<RVTransitIncidentFetcherRequest> fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
      Handler completionHandler);

 private:
  using Request = detail::RVTransitIncidentFetcherRequest;

  RVTransitIncidentFetcher() = default;

  void fetchIncidentsForFavorites(const Favorites& favorites, const std::shared_ptr<Request>& request);
  void _fetchIncidentsForLines(const std::vector<SharedLine>& lines,
                               const std::shared_ptr<Request>& withRequest);
  static void finish(Request& request, std::shared_ptr<const TransitLineItems> lineItems,
                     std::optional<Error> error);
  /// Adds fake incidents to some of the items that have none: one random number is drawn for each such item.
  /// `items` may be null, which counts as empty.
  static TransitLineItems _fakeLineItemsFromItems(const TransitLineItems* items);
};

}  // namespace linewatch

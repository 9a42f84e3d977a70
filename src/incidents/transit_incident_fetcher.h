#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "incidents/transit_incident_fetcher_request.h"
#include "platform/favorites.h"
#include "platform/transit_line.h"
#include "shared/error.h"

namespace linewatch {

/// Fetches the user's favourite lines with their current incidents. Made for one fetch; it lives on until the
/// fetch has ended, even if nobody keeps it.
class RVTransitIncidentFetcher : public std::enable_shared_from_this<RVTransitIncidentFetcher> {
 public:
  using Handler = RVTransitIncidentFetcherRequest::Handler;

  static std::shared_ptr<RVTransitIncidentFetcher> make();

  /// Starts the fetch and returns. The handler, if any, is called on the main thread once the fetch has
  /// ended, never before this call has returned. The result is the service's line items in its own order, an
  /// empty list when no favourite is a line, or the error of the service or of reading the favourites. Main
  /// thread.
  std::shared_ptr<RVTransitIncidentFetcherRequest> fetchFavoriteLinesTransitIncidentsWithCompletionHandler(
      Handler completionHandler);

  /// The items with fake incidents on some of those that have none. A random number is drawn for each such
  /// item.
  static TransitLineItems _fakeLineItemsFromItems(const TransitLineItems& items);

 private:
  using Request = detail::RVTransitIncidentFetcherRequest;

  RVTransitIncidentFetcher() = default;

  void fetchIncidentsForFavorites(const Favorites& favorites, const std::shared_ptr<Request>& request);
  void _fetchIncidentsForLines(const std::vector<SharedLine>& lines, const std::shared_ptr<Request>& request);
  static void finish(Request& request, std::shared_ptr<const TransitLineItems> lineItems,
                     std::optional<Error> error);
};

}  // namespace linewatch

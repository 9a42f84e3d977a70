#include "incidents/transit_incident_fetcher.h"

#include <utility>
#include <variant>

#include "incidents/companion_stores.h"
#include "incidents/debug_transit_incident.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/random_source.h"
#include "platform/transit_service.h"
#include "shared/rova_map.h"

namespace linewatch {

namespace {

constexpr const char* kInjectFakeIncidentsKey = "Rova.LineWatch.internal.injectFakeIncidents";
constexpr const char* kRandomNumberIncidentsKey = "Rova.LineWatch.internal.randomNumberIncidents";

SharedLine lineOfFavorite(const Favorite& favorite) {
  const auto* line = std::get_if<FavoriteTransitLine>(&favorite);
  return line ? line->transitLine : nullptr;
}

Array muidsOf(const std::vector<MapItemIdentifier>& identifiers) {
  Array muids;
  for (const MapItemIdentifier& identifier : identifiers) muids.emplace_back(identifier.muid);
  return muids;
}

std::uint32_t drawOneOfThree() { return platform().randomSource().next() % 3; }

std::uint32_t numberOfFakeIncidents() {
  return _rova_groupUserDefaults()->boolForKey(kRandomNumberIncidentsKey) ? drawOneOfThree() : 1;
}

SharedLineItem withFakeIncidents(const SharedLineItem& item) {
  if (!item->incidents().empty() || drawOneOfThree() == 0) return item;
  TransitIncidents incidents;
  for (std::uint32_t left = numberOfFakeIncidents(); left > 0; --left) {
    incidents.push_back(DebugTransitIncident::_debug_fakeIncidentAffectingLine(*item));
  }
  return std::make_shared<const DebugTransitLineItem>(item, std::move(incidents));
}

}  // namespace

std::shared_ptr<RVTransitIncidentFetcher> RVTransitIncidentFetcher::make() {
  return std::shared_ptr<RVTransitIncidentFetcher>(new RVTransitIncidentFetcher);
}

std::shared_ptr<RVTransitIncidentFetcherRequest>
RVTransitIncidentFetcher::fetchFavoriteLinesTransitIncidentsWithCompletionHandler(Handler completionHandler) {
  auto request = std::make_shared<Request>(std::move(completionHandler));
  defaultContainer()->readContents([self = shared_from_this(), request](const Outcome<Favorites>& favorites) {
    if (favorites) return self->fetchIncidentsForFavorites(*favorites, request);
    // An empty list would say that the user has no favourites.
    platform().mainLoop().dispatchAsync(
        [request, error = favorites.error()] { finish(*request, nullptr, error); });
  });
  return request;
}

void RVTransitIncidentFetcher::fetchIncidentsForFavorites(const Favorites& favorites,
                                                          const std::shared_ptr<Request>& request) {
  logDebug("Received %lu favorites from container.", {favorites.size()});
  const auto lines =
      RovaMap(favorites, [](const Favorite& favorite, std::size_t) { return lineOfFavorite(favorite); });
  if (!lines.empty()) return _fetchIncidentsForLines(lines, /*withRequest=*/request);
  logDebug("0 Favorite lines, returning early.");
  platform().mainLoop().dispatchAsync([request] {
    request->setResultAndInvokeCompletionHandlers(
        std::make_shared<RVResult>(std::make_shared<TransitLineItems>()));
  });
}

void RVTransitIncidentFetcher::_fetchIncidentsForLines(const std::vector<SharedLine>& lines,
                                                       const std::shared_ptr<Request>& withRequest) {
  auto identifiers =
      RovaMap(lines, [](const SharedLine& line, std::size_t) { return mapItemIdentifierForLine(*line); });
  logDebug("Issuing favorite lines lookup request for Muids: %{private}@.", {muidsOf(identifiers)});
  platform()
      .transitService()
      .ticketForTransitLines(std::move(identifiers))
      ->submit([self = shared_from_this(), request = withRequest](
                   std::shared_ptr<const TransitLineItems> lineItems, std::optional<Error> error) {
        self->finish(*request, std::move(lineItems), std::move(error));
      });
}

void RVTransitIncidentFetcher::finish(Request& request, std::shared_ptr<const TransitLineItems> lineItems,
                                      std::optional<Error> error) {
  if (error) {
    logDebug("Received error: %{private}@.", {error->description()});
    return request.setResultAndInvokeCompletionHandlers(std::make_shared<RVResult>(*std::move(error)));
  }
  if (_rova_groupUserDefaults()->boolForKey(kInjectFakeIncidentsKey)) {
    // The result is never absent, even when the service gave no items.
    lineItems = std::make_shared<const TransitLineItems>(_fakeLineItemsFromItems(lineItems.get()));
  }
  logDebug("Received %lu line items.", {lineItems ? lineItems->size() : 0});
  request.setResultAndInvokeCompletionHandlers(std::make_shared<RVResult>(std::move(lineItems)));
}

TransitLineItems RVTransitIncidentFetcher::_fakeLineItemsFromItems(const TransitLineItems* items) {
  return RovaMap(items, [](const SharedLineItem& item, std::size_t) { return withFakeIncidents(item); });
}

}  // namespace linewatch

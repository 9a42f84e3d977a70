#include "app/shown_content.h"

#include <unordered_map>
#include <utility>

#include "app/favorite_lines.h"
#include "shared/hash_mixing.h"

namespace linewatch::app {

namespace {

ShownLine shownFavorite(const FavoriteLine& favorite) {
  const StoredFavorite& stored = favorite.favorite;
  ShownLine line{.muid = stableMuid(stored.feed, stored.subject),
                 .feed = stored.feed,
                 .routeId = stored.subject,
                 .name = stored.subject,
                 .agency = {},
                 .item = nullptr};
  if (favorite.line) {
    line.muid = favorite.line->index->muidOfRoute(favorite.line->route);
    line.name = favorite.line->index->nameOfRoute(favorite.line->route);
    line.agency = favorite.line->agencyName();
  }
  return line;
}

ShownLine shownItem(const SharedLineItem& item) {
  return {.muid = item->muid(),
          .feed = {},
          .routeId = {},
          .name = item->name(),
          .agency = item->system() ? item->system()->name : "",
          .item = item};
}

using ItemsByMuid = std::unordered_map<std::uint64_t, SharedLineItem, IdentifierHash>;

ItemsByMuid itemsByMuid(const TransitLineItems& items) {
  ItemsByMuid known;
  for (const SharedLineItem& item : items) known.emplace(item->muid(), item);
  return known;
}

std::vector<ShownLine> shownLines(Session& session, const TransitLineItems& items) {
  ItemsByMuid known = itemsByMuid(items);
  std::vector<ShownLine> lines;
  if (const auto favorites = favoriteLines(session)) {
    for (const FavoriteLine& favorite : *favorites) {
      lines.push_back(shownFavorite(favorite));
      if (auto item = known.extract(lines.back().muid)) lines.back().item = std::move(item.mapped());
    }
  }
  for (const SharedLineItem& item : items) {
    if (known.erase(item->muid()) > 0) lines.push_back(shownItem(item));
  }
  return lines;
}

std::vector<std::uint64_t> incidentsOf(const TransitLineItems& items) {
  std::vector<std::uint64_t> muids;
  for (const SharedLineItem& item : items) {
    for (const SharedIncident& incident : item->incidents()) muids.push_back(incident->muid());
  }
  return muids;
}

}  // namespace

ShownContent shownContent(Session& session, const RVResult& result,
                          std::shared_ptr<const RVTransitListItem> list) {
  static const TransitLineItems kNoLines;
  const bool isKnown = !result.error() && result.successObject();
  const TransitLineItems& items = isKnown ? *result.successObject() : kNoLines;
  const Date now = session.platform().mainLoop().now();
  return {.now = now,
          .feeds = session.platform().feeds().states(),
          .lines = shownLines(session, items),
          .details = session.platform().feeds().detailsOfIncidents(incidentsOf(items)),
          .upcoming = upcomingIncidents(items, now),
          .list = std::move(list)};
}

}  // namespace linewatch::app

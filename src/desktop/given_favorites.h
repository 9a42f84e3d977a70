#pragma once

#include <string>
#include <utility>
#include <vector>

#include "desktop/feeds/line_index.h"
#include "desktop/storage/stored_favorites.h"
#include "platform/favorites.h"
#include "platform/transit_records.h"

namespace linewatch::desktop {

/// A line of a feed as favourites know it: enough to look it up, without having loaded the feed. Whether the
/// feed still has it is for the transit service to say, which also tells when the feed cannot be read.
inline SharedLine favoriteLine(const std::string& feed, const std::string& routeId) {
  const std::uint64_t muid = stableMuid(feed, routeId);
  return std::make_shared<const TransitLineRecord>(
      TransitLineFields{.muid = muid, .identifier = MapItemIdentifier{muid}, .name = routeId},
      TransitIncidents{});
}

/// Favourites that were given to the program and are kept nowhere.
class GivenFavorites final : public RemoteFavoritesPersister {
 public:
  explicit GivenFavorites(std::vector<StoredFavorite> lines) : lines_(std::move(lines)) {}

  Favorites readFavorites() override {
    Favorites favorites;
    for (const StoredFavorite& line : lines_) {
      favorites.emplace_back(FavoriteTransitLine{favoriteLine(line.feed, line.subject)});
    }
    return favorites;
  }

 private:
  std::vector<StoredFavorite> lines_;
};

}  // namespace linewatch::desktop

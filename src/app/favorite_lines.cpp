#include "app/favorite_lines.h"

namespace linewatch::app {

Outcome<std::vector<FavoriteLine>> favoriteLines(Session& session) {
  const auto stored = session.platform().favorites().lines();
  if (!stored) return stored.error();
  std::vector<FavoriteLine> favorites;
  favorites.reserve(stored->size());
  for (const StoredFavorite& favorite : *stored) {
    const auto index = session.platform().feeds().linesOf(favorite.feed);
    const auto route = index ? (*index)->routeWithId(favorite.subject) : std::nullopt;
    favorites.push_back({favorite, route ? std::optional(FoundLine{*index, *route}) : std::nullopt});
  }
  return favorites;
}

}  // namespace linewatch::app

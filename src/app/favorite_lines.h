#pragma once

#include <optional>
#include <vector>

#include "app/session.h"
#include "feeds/gtfs/line_search.h"
#include "shared/outcome.h"
#include "storage/stored_favorites.h"

namespace linewatch::app {

/// A favourite and its line. The line is absent if its feed does not have it or cannot be read.
struct FavoriteLine {
  StoredFavorite favorite;
  std::optional<FoundLine> line;
};

/// All favourites, in the user's order.
Outcome<std::vector<FavoriteLine>> favoriteLines(Session& session);

}  // namespace linewatch::app

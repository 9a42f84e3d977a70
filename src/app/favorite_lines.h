#pragma once

#include <optional>
#include <vector>

#include "app/session.h"
#include "feeds/gtfs/line_search.h"
#include "shared/outcome.h"
#include "storage/stored_favorites.h"

namespace linewatch::app {

/// A favourite with its line; without one when its feed does not have the line, or cannot be read.
struct FavoriteLine {
  StoredFavorite favorite;
  std::optional<FoundLine> line;
};

/// In the user's order.
Outcome<std::vector<FavoriteLine>> favoriteLines(Session& session);

}  // namespace linewatch::app

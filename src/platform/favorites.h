#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "platform/transit_line.h"
#include "shared/outcome.h"

namespace linewatch {

/// A saved transit line. The line is null when it was saved but is not known any more.
struct FavoriteTransitLine {
  SharedLine transitLine;
};

/// The other things that the companion application keeps as favourites; the widget counts them and shows
/// none.
struct FavoritePlace {
  std::string name;
};
struct FavoriteRoute {
  std::string name;
};
struct FavoriteRegion {
  std::string name;
};

using Favorite = std::variant<FavoriteTransitLine, FavoritePlace, FavoriteRoute, FavoriteRegion>;
using Favorites = std::vector<Favorite>;

/// Reaches the favourites that the companion application keeps.
class RemoteFavoritesPersister {
 public:
  virtual ~RemoteFavoritesPersister() = default;

  /// All favourites in the user's order; an error when they cannot be read. A single favourite that is not
  /// understood is left out and logged. May take long; called on any thread, one call at a time.
  virtual Outcome<Favorites> readFavorites() = 0;
};

/// The user's favourites, for concurrent reading.
class FavoritesContainer {
 public:
  virtual ~FavoritesContainer() = default;

  /// Calls `operation` exactly once with all favourites or the error of the read: not within this call, but
  /// possibly on another thread while this call still returns.
  virtual void readContents(std::function<void(const Outcome<Favorites>&)> operation) = 0;
};

}  // namespace linewatch

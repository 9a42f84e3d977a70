#pragma once

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "platform/transit_line.h"
#include "shared/outcome.h"

namespace linewatch {

/// A saved transit line. The line is null when no feed knows the saved line any more.
struct FavoriteTransitLine {
  SharedLine transitLine;
};

/// The other kinds of favourite in the companion application. The widget counts them but does not show them.
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

/// Reads the favourites that the companion application keeps.
class RemoteFavoritesPersister {
 public:
  virtual ~RemoteFavoritesPersister() = default;

  /// All favourites in the user's order, empty when there are none; an error when they cannot be read. A
  /// favourite that cannot be parsed is left out and logged. May be slow, because it reads files. Any thread,
  /// but one call at a time.
  virtual Outcome<Favorites> readFavorites() = 0;
};

/// Reads the user's favourites off the main thread. Any thread.
class FavoritesContainer {
 public:
  virtual ~FavoritesContainer() = default;

  /// Calls `operation` exactly once with all favourites or the error of the read, on a thread of the
  /// container's choice and never from within this call; it may run before this call has returned.
  virtual void readContents(std::function<void(const Outcome<Favorites>&)> operation) = 0;
};

}  // namespace linewatch

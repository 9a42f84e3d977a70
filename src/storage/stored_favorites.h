#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/favorites.h"
#include "shared/outcome.h"
#include "storage/state_database.h"

namespace linewatch {

/// What kind of thing a favourite is.
enum class FavoriteKind { line, place, route, region };

/// A favourite as it is kept.
struct StoredFavorite {
  FavoriteKind kind = FavoriteKind::line;
  /// The feed of a line; empty for the other kinds.
  std::string feed;
  /// A line's route id in its feed; the name of anything else.
  std::string subject;

  bool operator==(const StoredFavorite&) const = default;
};

/// The user's favourites in the state database, in the user's order. Any thread.
class StoredFavorites {
 public:
  explicit StoredFavorites(SharedDatabase database) : database_(std::move(database)) {}

  /// Those of a kind that this version does not know are left out and logged.
  Outcome<std::vector<StoredFavorite>> list() const;
  /// Adds the favourite at the end; false when it is one already.
  Outcome<bool> add(const StoredFavorite& favorite);
  /// False when it was none.
  Outcome<bool> remove(const StoredFavorite& favorite);

 private:
  SharedDatabase database_;
};

/// Finds the line that a feed's route is; null when the feed or the route is not known. Called on any thread.
using LineResolver = std::function<SharedLine(const std::string& feed, const std::string& routeId)>;

/// Reads the stored favourites, with the lines that `resolve` finds for them.
class StoredFavoritesPersister final : public RemoteFavoritesPersister {
 public:
  StoredFavoritesPersister(SharedDatabase database, LineResolver resolve)
      : database_(std::move(database)), resolve_(std::move(resolve)) {}

  Outcome<Favorites> readFavorites() override;

 private:
  Favorite favoriteOf(const StoredFavorite& stored) const;

  SharedDatabase database_;
  LineResolver resolve_;
};

}  // namespace linewatch

#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/favorites.h"
#include "platform/line_choice.h"
#include "shared/outcome.h"
#include "storage/state_database.h"

namespace linewatch {

/// What a favourite is.
enum class FavoriteKind { line, place, route, region };

/// A favourite in the database.
struct StoredFavorite {
  FavoriteKind kind = FavoriteKind::line;
  /// The feed of a line; empty for the other kinds.
  std::string feed;
  /// The route id of a line in its feed; the name of anything else.
  std::string subject;
  /// The incidents of a line that are wanted.
  LineChoice choice = {};

  bool operator==(const StoredFavorite&) const = default;
  /// True for the same favourite, whatever the choices.
  bool isSameAs(const StoredFavorite& other) const {
    return kind == other.kind && feed == other.feed && subject == other.subject;
  }
};

/// Adds the favourite at the end, within a transaction; false when it is there already.
Outcome<bool> insertFavorite(SqliteDatabase& database, const StoredFavorite& favorite);
/// False when it is not there.
Outcome<bool> deleteFavorite(SqliteDatabase& database, const StoredFavorite& favorite);

/// The user's favourites in the state database, in the user's order. Any thread.
class StoredFavorites {
 public:
  explicit StoredFavorites(SharedDatabase database) : database_(std::move(database)) {}

  /// Leaves out favourites of a kind that this version does not know, with a line in the log.
  Outcome<std::vector<StoredFavorite>> list() const;
  /// Adds the favourites at the end, all or none. For each of them: false when it was one already.
  Outcome<std::vector<bool>> add(const std::vector<StoredFavorite>& favorites);
  /// As `add`, and gives the favourites that are there already the new choice. For each of them: false when
  /// that changed nothing.
  Outcome<std::vector<bool>> addWithChoice(const std::vector<StoredFavorite>& favorites);
  /// Removes the favourites, all or none. For each of them: false when it was none.
  Outcome<std::vector<bool>> remove(const std::vector<StoredFavorite>& favorites);

 private:
  SharedDatabase database_;
};

/// Finds the line of a favourite; null when the feed or the route is not known. Called on any thread.
using LineResolver = std::function<SharedLine(const StoredFavorite& favorite)>;

/// Reads the favourites from the database and their lines from `resolve`.
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

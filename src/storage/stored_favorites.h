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

/// The kind of thing that a favourite names.
enum class FavoriteKind { line, place, route, region };

/// A favourite in the database.
struct StoredFavorite {
  FavoriteKind kind = FavoriteKind::line;
  /// The feed of a line; empty for the other kinds.
  std::string feed;
  /// The route id of a line in its feed; the name of anything else.
  std::string subject;
  /// Which of the line's incidents the user wants to see.
  LineChoice choice = {};

  bool operator==(const StoredFavorite&) const = default;
  /// Compares everything but the choices.
  bool isSameAs(const StoredFavorite& other) const {
    return kind == other.kind && feed == other.feed && subject == other.subject;
  }
};

/// Adds the favourite at the end; false if it is there already. Call it within a transaction.
Outcome<bool> insertFavorite(SqliteDatabase& database, const StoredFavorite& favorite);
/// Removes the favourite; false if it is not there. Call it within a transaction.
Outcome<bool> deleteFavorite(SqliteDatabase& database, const StoredFavorite& favorite);

/// The user's favourites in the state database, in the user's order. Any thread.
class StoredFavorites {
 public:
  explicit StoredFavorites(SharedDatabase database) : database_(std::move(database)) {}

  /// Leaves out favourites of a kind that this version does not know, with a line in the log.
  Outcome<std::vector<StoredFavorite>> list() const;
  /// Adds all of the favourites at the end, or none after an error. The result has one value for each: false
  /// if it was there already.
  Outcome<std::vector<bool>> add(const std::vector<StoredFavorite>& favorites);
  /// As `add`, but a favourite that is there already gets the new choice. The value is false if nothing
  /// changed.
  Outcome<std::vector<bool>> addWithChoice(const std::vector<StoredFavorite>& favorites);
  /// Removes all of the favourites, or none after an error. The value is false if a favourite was not there.
  Outcome<std::vector<bool>> remove(const std::vector<StoredFavorite>& favorites);
  /// Puts these favourites into this order, at the places that they have together. Favourites that are not
  /// stored are ignored. False if that changes nothing.
  Outcome<bool> reorder(const std::vector<StoredFavorite>& order);

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

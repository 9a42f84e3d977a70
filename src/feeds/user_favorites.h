#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "feeds/gtfs/line_search.h"
#include "platform/favorites.h"
#include "shared/outcome.h"
#include "storage/state_database.h"
#include "storage/stored_favorites.h"

namespace linewatch {

/// The favourite that names the line.
StoredFavorite favoriteOf(const FoundLine& line);

/// The user's favourites, either saved or given for one run. While the sample city is shown, they are the
/// lines in its favorites.txt until the user changes them. Favourites of removed feeds stay. Any thread.
class UserFavorites {
 public:
  /// Favourites of a run without saved state, by route id in the given feed.
  explicit UserFavorites(const std::vector<std::string>& givenRouteIds);
  /// `sampleCity`: the folder of the sample city.
  UserFavorites(SharedDatabase state, std::filesystem::path sampleCity);

  /// The favourite lines, in the user's order: those of the sample city while it is shown, else all others.
  /// Includes lines of removed feeds, and lines that their feed no longer has.
  Outcome<std::vector<StoredFavorite>> lines() const;
  /// Adds or removes all of the favourites, or none after an error. The result has one value for each: false
  /// if it was there already, or was not there to remove. Favourites given for one run cannot be changed.
  Outcome<std::vector<bool>> change(const std::vector<StoredFavorite>& favorites, bool isAdded) const;
  /// As `change` for adding, and gives favourites that are there already the new choice. The result has one
  /// value for each: false if nothing changed.
  Outcome<std::vector<bool>> addWithChoice(const std::vector<StoredFavorite>& favorites) const;
  /// Puts favourites into this order, which is the order of the rows; false if that changes nothing.
  Outcome<bool> reorder(const std::vector<StoredFavorite>& order) const;
  /// Adds or removes one favourite.
  Outcome<bool> change(const StoredFavorite& favorite, bool isAdded) const;
  /// The favourites of every kind, for the widget.
  Outcome<Favorites> read() const;

 private:
  struct Given {
    std::vector<StoredFavorite> lines;
  };
  struct Saved {
    SharedDatabase state;
    std::filesystem::path sampleCity;

    enum class Owner { user, userInSampleCity, sampleCity };

    Outcome<Owner> owner() const;
    Outcome<Favorites> favorites() const;
    Outcome<std::vector<StoredFavorite>> lines() const;
    Outcome<std::vector<bool>> change(const std::vector<StoredFavorite>& favorites, bool isAdded) const;
    Outcome<std::vector<bool>> addWithChoice(const std::vector<StoredFavorite>& favorites) const;
    Outcome<bool> reorder(const std::vector<StoredFavorite>& order) const;
    std::optional<Error> takeOverSampleFavorites() const;
  };

  std::variant<Given, Saved> source_;
};

/// Reads the favourites at each call, because the widget keeps one persister for its whole life.
class UserFavoritesPersister final : public RemoteFavoritesPersister {
 public:
  explicit UserFavoritesPersister(UserFavorites favorites) : favorites_(std::move(favorites)) {}

  Outcome<Favorites> readFavorites() override { return favorites_.read(); }

 private:
  UserFavorites favorites_;
};

}  // namespace linewatch

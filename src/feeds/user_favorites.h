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

/// The line as a favourite names it.
StoredFavorite favoriteOf(const FoundLine& line);

/// The user's favourites, given for one run or saved. While the sample city is shown they are the city's own
/// until the user changes them. Any thread.
class UserFavorites {
 public:
  /// Favourites of a run without saved state, by route id in the given feed.
  explicit UserFavorites(const std::vector<std::string>& givenRouteIds);
  /// `sampleCity`: the folder of the sample city.
  UserFavorites(SharedDatabase state, std::filesystem::path sampleCity);

  /// The favourite lines of the feeds that are shown, in the user's order. A line that its feed has no longer
  /// is among them.
  Outcome<std::vector<StoredFavorite>> lines() const;
  /// Adds or removes all of the favourites, or none. For each of them: false when that changed nothing. Given
  /// favourites cannot be changed.
  Outcome<std::vector<bool>> change(const std::vector<StoredFavorite>& favorites, bool isAdded) const;
  /// Adds all of the favourites, or none; those that are there already get the new choice. For each of them:
  /// false when that changed nothing.
  Outcome<std::vector<bool>> addWithChoice(const std::vector<StoredFavorite>& favorites) const;
  /// Adds or removes one favourite.
  Outcome<bool> change(const StoredFavorite& favorite, bool isAdded) const;
  /// The favourites of every kind as the widget takes them. An error is also written to the log.
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
    std::optional<Error> takeOverSampleFavorites() const;
  };

  std::variant<Given, Saved> source_;
};

/// Reads the favourites anew at each call. The widget keeps one persister for its whole life, and the user's
/// first change turns the sample city's favourites into the user's own.
class UserFavoritesPersister final : public RemoteFavoritesPersister {
 public:
  explicit UserFavoritesPersister(UserFavorites favorites) : favorites_(std::move(favorites)) {}

  Outcome<Favorites> readFavorites() override { return favorites_.read(); }

 private:
  UserFavorites favorites_;
};

}  // namespace linewatch

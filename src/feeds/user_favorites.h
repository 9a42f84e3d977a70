#pragma once

#include <cstdint>
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

/// The `muid` that stands for favourites that could not be read. No line has it; looking it up fails.
std::uint64_t unreadFavorites();

/// The user's favourites: given for one run, or saved; as long as the sample city is shown, its own until the
/// user changes them. Any thread.
class UserFavorites {
 public:
  /// Of the given feed, by route id; kept nowhere.
  explicit UserFavorites(const std::vector<std::string>& givenRouteIds);
  /// `sampleCity`: the folder of it.
  UserFavorites(SharedDatabase state, std::filesystem::path sampleCity);

  /// The lines of the feeds that are shown, in the user's order, whether or not their feed has them.
  Outcome<std::vector<StoredFavorite>> lines() const;
  /// Adds or removes all of the favourites, or none. For each of them: false when that changed nothing. Given
  /// favourites cannot be changed.
  Outcome<std::vector<bool>> change(const std::vector<StoredFavorite>& favorites, bool isAdded) const;
  /// The same for one favourite.
  Outcome<bool> change(const StoredFavorite& favorite, bool isAdded) const;
  /// As the widget takes them, of every kind. Those that cannot be read are one line, `unreadFavorites()`,
  /// and a line in the log: none at all would look as if the user had none.
  Favorites read() const;

 private:
  struct Given {
    std::vector<StoredFavorite> lines;
  };
  struct Saved {
    SharedDatabase state;
    std::filesystem::path sampleCity;

    /// Whose favourites are shown.
    enum class Owner { user, userInSampleCity, sampleCity };

    Outcome<Owner> owner() const;
    Outcome<Favorites> favorites() const;
    Outcome<std::vector<StoredFavorite>> lines() const;
    Outcome<std::vector<bool>> change(const std::vector<StoredFavorite>& favorites, bool isAdded) const;
    std::optional<Error> takeOverSampleFavorites() const;
  };

  std::variant<Given, Saved> source_;
};

/// Reads the favourites as they are at each time: the first change makes the sample city's the user's own,
/// which the widget, with one persister for all its life, must see.
class UserFavoritesPersister final : public RemoteFavoritesPersister {
 public:
  explicit UserFavoritesPersister(UserFavorites favorites) : favorites_(std::move(favorites)) {}

  Favorites readFavorites() override { return favorites_.read(); }

 private:
  UserFavorites favorites_;
};

}  // namespace linewatch

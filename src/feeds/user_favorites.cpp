#include "feeds/user_favorites.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <string_view>

#include "feeds/shown_feeds.h"
#include "platform/transit_records.h"
#include "shared/failure.h"
#include "storage/program_preferences.h"
#include "storage/stored_preferences.h"

namespace linewatch {

namespace {

// In the program's own suite: the user has changed the sample city's favourites.
constexpr std::string_view kSampleFavoritesChangedKey = "sampleFavoritesChanged";

Outcome<std::vector<StoredFavorite>> sampleFavorites(const std::filesystem::path& city) {
  std::ifstream file(city / "favorites.txt");
  if (!file)
    return failure(FailureCode::unreadable, "the sample city", (city / "favorites.txt").string(),
                   "cannot be read");
  std::vector<StoredFavorite> favorites;
  for (std::string routeId; std::getline(file, routeId);) {
    if (!routeId.empty()) favorites.push_back({FavoriteKind::line, std::string(kSampleFeedName), routeId});
  }
  return favorites;
}

StoredPreferences programPreferences(const SharedDatabase& state) {
  return {state, std::string(kProgramSuite)};
}

/// A line with its identifier only, so that the feed need not be loaded. The transit service says whether the
/// feed still has the line.
SharedLine lineToLookUp(const StoredFavorite& favorite) {
  const std::string& routeId = favorite.subject;
  const std::uint64_t muid = stableMuid(favorite.feed, routeId);
  return std::make_shared<const TransitLineRecord>(
      TransitLineFields{.muid = muid,
                        .identifier = MapItemIdentifier{muid, favorite.feed, routeId, favorite.choice},
                        .name = routeId},
      TransitIncidents{});
}

Favorites toLookUp(const std::vector<StoredFavorite>& lines) {
  Favorites favorites;
  favorites.reserve(lines.size());
  for (const StoredFavorite& line : lines) {
    favorites.emplace_back(FavoriteTransitLine{lineToLookUp(line)});
  }
  return favorites;
}

}  // namespace

StoredFavorite favoriteOf(const FoundLine& line) {
  return {FavoriteKind::line, line.index->feedName(), line.entry().id};
}

UserFavorites::UserFavorites(const std::vector<std::string>& givenRouteIds) {
  Given given;
  given.lines.reserve(givenRouteIds.size());
  for (const std::string& routeId : givenRouteIds) {
    given.lines.push_back({FavoriteKind::line, std::string(kGivenFeedName), routeId});
  }
  source_ = std::move(given);
}

UserFavorites::UserFavorites(SharedDatabase state, std::filesystem::path sampleCity)
    : source_(Saved{std::move(state), std::move(sampleCity)}) {}

Outcome<std::vector<StoredFavorite>> UserFavorites::lines() const {
  if (const auto* const given = std::get_if<Given>(&source_)) return given->lines;
  return std::get<Saved>(source_).lines();
}

Outcome<bool> UserFavorites::change(const StoredFavorite& favorite, bool isAdded) const {
  const auto changed = change(std::vector{favorite}, isAdded);
  return changed ? Outcome<bool>(changed->front()) : changed.error();
}

Outcome<std::vector<bool>> UserFavorites::change(const std::vector<StoredFavorite>& favorites,
                                                 bool isAdded) const {
  if (const auto* const saved = std::get_if<Saved>(&source_)) return saved->change(favorites, isAdded);
  return failure(FailureCode::unsupported, "favourites", "", "a run without saved state keeps none");
}

Outcome<std::vector<bool>> UserFavorites::addWithChoice(const std::vector<StoredFavorite>& favorites) const {
  if (const auto* const saved = std::get_if<Saved>(&source_)) return saved->addWithChoice(favorites);
  return failure(FailureCode::unsupported, "favourites", "", "a run without saved state keeps none");
}

Outcome<bool> UserFavorites::reorder(const std::vector<StoredFavorite>& order) const {
  if (const auto* const saved = std::get_if<Saved>(&source_)) return saved->reorder(order);
  return failure(FailureCode::unsupported, "favourites", "", "a run without saved state keeps none");
}

Outcome<Favorites> UserFavorites::read() const {
  if (const auto* const given = std::get_if<Given>(&source_)) return toLookUp(given->lines);
  return std::get<Saved>(source_).favorites();
}

Outcome<UserFavorites::Saved::Owner> UserFavorites::Saved::owner() const {
  const auto feeds = ShownFeeds(state, sampleCity).read();
  if (!feeds) return feeds.error();
  if (!isSampleCity(*feeds)) return Owner::user;
  const auto isChanged = programPreferences(state).read(kSampleFavoritesChangedKey);
  if (!isChanged) return isChanged.error();
  return *isChanged == Value(true) ? Owner::userInSampleCity : Owner::sampleCity;
}

/// Either the favourites of the sample city, while it is shown, or those of the user's feeds.
Outcome<Favorites> UserFavorites::Saved::favorites() const {
  const auto whose = owner();
  if (!whose) return whose.error();
  if (*whose != Owner::sampleCity) {
    auto favorites = StoredFavoritesPersister(state, lineToLookUp).readFavorites();
    if (!favorites) return favorites;
    std::erase_if(*favorites, [isSample = *whose == Owner::userInSampleCity](const Favorite& favorite) {
      const auto* const line = std::get_if<FavoriteTransitLine>(&favorite);
      return line != nullptr && (line->transitLine->identifier()->feed == kSampleFeedName) != isSample;
    });
    return favorites;
  }
  const auto sample = sampleFavorites(sampleCity);
  return sample ? toLookUp(*sample) : Outcome<Favorites>(sample.error());
}

Outcome<std::vector<StoredFavorite>> UserFavorites::Saved::lines() const {
  const auto whose = owner();
  if (!whose) return whose.error();
  if (*whose == Owner::sampleCity) return sampleFavorites(sampleCity);
  auto stored = StoredFavorites(state).list();
  if (!stored) return stored;
  std::erase_if(*stored, [isSample = *whose == Owner::userInSampleCity](const StoredFavorite& favorite) {
    return favorite.kind != FavoriteKind::line || isOfAddedFeed(favorite) == isSample;
  });
  return stored;
}

Outcome<std::vector<bool>> UserFavorites::Saved::change(const std::vector<StoredFavorite>& favorites,
                                                        bool isAdded) const {
  const auto whose = owner();
  if (!whose) return whose.error();
  if (*whose == Owner::sampleCity) {
    if (auto error = takeOverSampleFavorites()) return *std::move(error);
  }
  StoredFavorites stored(state);
  return isAdded ? stored.add(favorites) : stored.remove(favorites);
}

Outcome<std::vector<bool>> UserFavorites::Saved::addWithChoice(
    const std::vector<StoredFavorite>& favorites) const {
  // The first change makes the sample city's favourites the user's own.
  if (const auto taken = change({}, true); !taken) return taken.error();
  return StoredFavorites(state).addWithChoice(favorites);
}

Outcome<bool> UserFavorites::Saved::reorder(const std::vector<StoredFavorite>& order) const {
  // The first change makes the sample city's favourites the user's own.
  if (const auto taken = change({}, true); !taken) return taken.error();
  return StoredFavorites(state).reorder(order);
}

/// Makes the favourites of the sample city the user's own.
std::optional<Error> UserFavorites::Saved::takeOverSampleFavorites() const {
  const auto sample = sampleFavorites(sampleCity);
  if (!sample) return sample.error();
  const auto noteChange = programPreferences(state).writeOf(true, kSampleFavoritesChangedKey);
  if (!noteChange) return noteChange.error();
  return state->write([&](SqliteDatabase& database) -> std::optional<Error> {
    for (const StoredFavorite& favorite : *sample) {
      if (const auto added = insertFavorite(database, favorite); !added) return added.error();
    }
    return (*noteChange)(database);
  });
}

}  // namespace linewatch

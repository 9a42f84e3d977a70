#include "storage/stored_favorites.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string_view>

#include "shared/failure.h"

namespace linewatch {

namespace {

struct NamedKind {
  std::string_view name;
  FavoriteKind kind;
};
constexpr std::array kKinds = {NamedKind{"line", FavoriteKind::line}, NamedKind{"place", FavoriteKind::place},
                               NamedKind{"route", FavoriteKind::route},
                               NamedKind{"region", FavoriteKind::region}};

std::string_view nameOf(FavoriteKind kind) { return std::ranges::find(kKinds, kind, &NamedKind::kind)->name; }

std::optional<FavoriteKind> kindNamed(std::string_view name) {
  const auto* const known = std::ranges::find(kKinds, name, &NamedKind::name);
  return known == kKinds.end() ? std::nullopt : std::optional(known->kind);
}

// The column "stops": NULL for all stops, else the ids of the chosen ones, one a line. Empty for none.
std::optional<std::string> stopsColumn(const LineChoice& choice) {
  if (choice.stops == LineChoice::Stops::all) return std::nullopt;
  std::string ids;
  for (const std::string& id : choice.stopIds) ids.append(ids.empty() ? "" : "\n").append(id);
  return ids;
}

// The column "direction": 0, 1 or, for both, -1.
std::int64_t directionColumn(const LineChoice& choice) {
  return choice.direction ? static_cast<std::int64_t>(*choice.direction) : -1;
}

LineChoice choiceIn(const std::optional<std::string>& stops, std::int64_t direction) {
  LineChoice choice;
  if (direction == 0 || direction == 1) choice.direction = static_cast<std::uint8_t>(direction);
  if (!stops) return choice;
  choice.stops = stops->empty() ? LineChoice::Stops::none : LineChoice::Stops::chosen;
  std::istringstream ids(*stops);
  for (std::string id; std::getline(ids, id);) choice.stopIds.push_back(id);
  return choice;
}

using FavoriteChange = Outcome<bool>(SqliteDatabase& database, const StoredFavorite& favorite);

/// Changes all favourites in one transaction; for each of them whether that changed something.
Outcome<std::vector<bool>> changeEach(StoredDatabase& state, const std::vector<StoredFavorite>& favorites,
                                      FavoriteChange* change) {
  std::vector<bool> changed;
  const auto error = state.write([&](SqliteDatabase& database) -> std::optional<Error> {
    changed.clear();
    for (const StoredFavorite& favorite : favorites) {
      const auto isChanged = change(database, favorite);
      if (!isChanged) return isChanged.error();
      changed.push_back(*isChanged);
    }
    return std::nullopt;
  });
  return error ? Outcome<std::vector<bool>>(*error) : std::move(changed);
}

}  // namespace

Outcome<bool> insertFavorite(SqliteDatabase& database, const StoredFavorite& favorite) {
  const auto error = database.run(
      "INSERT OR IGNORE INTO favorite (kind, feed, subject, stops, direction) VALUES (?, ?, ?, ?, ?)",
      {nameOf(favorite.kind), favorite.feed, favorite.subject, parameterOf(stopsColumn(favorite.choice)),
       directionColumn(favorite.choice)});
  return error ? Outcome<bool>(*error) : database.changedRowCount() > 0;
}

Outcome<bool> deleteFavorite(SqliteDatabase& database, const StoredFavorite& favorite) {
  const auto error = database.run("DELETE FROM favorite WHERE kind = ? AND feed = ? AND subject = ?",
                                  {nameOf(favorite.kind), favorite.feed, favorite.subject});
  return error ? Outcome<bool>(*error) : database.changedRowCount() > 0;
}

namespace {

Outcome<bool> insertOrChoose(SqliteDatabase& database, const StoredFavorite& favorite) {
  auto isInserted = insertFavorite(database, favorite);
  if (!isInserted || *isInserted) return isInserted;
  const auto stops = stopsColumn(favorite.choice);
  const std::int64_t direction = directionColumn(favorite.choice);
  const auto error = database.run(
      "UPDATE favorite SET stops = ?, direction = ? WHERE kind = ? AND feed = ? AND subject = ? AND "
      "(stops IS NOT ? OR direction <> ?)",
      {parameterOf(stops), direction, nameOf(favorite.kind), favorite.feed, favorite.subject,
       parameterOf(stops), direction});
  return error ? Outcome<bool>(*error) : database.changedRowCount() > 0;
}

}  // namespace

Outcome<std::vector<StoredFavorite>> StoredFavorites::list() const {
  std::vector<StoredFavorite> favorites;
  std::vector<std::string> unknownKinds;
  const auto error = database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT kind, feed, subject, stops, direction FROM favorite ORDER BY position", {},
                        [&](const SqliteRow& row) {
                          const std::string name = row.text(0);
                          if (const auto kind = kindNamed(name)) {
                            favorites.push_back({*kind, row.text(1), row.text(2),
                                                 choiceIn(row.optionalText(3), row.integer(4))});
                          } else {
                            unknownKinds.push_back(name);
                          }
                        });
  });
  if (error) return *error;
  for (const auto& name : unknownKinds) {
    database_->report(failure("favorites", name, "a favourite of this kind is not known and is left out"));
  }
  return favorites;
}

Outcome<std::vector<bool>> StoredFavorites::add(const std::vector<StoredFavorite>& favorites) {
  return changeEach(*database_, favorites, insertFavorite);
}

Outcome<std::vector<bool>> StoredFavorites::addWithChoice(const std::vector<StoredFavorite>& favorites) {
  return changeEach(*database_, favorites, insertOrChoose);
}

Outcome<std::vector<bool>> StoredFavorites::remove(const std::vector<StoredFavorite>& favorites) {
  const auto known = list();
  if (!known) return known.error();
  const bool areUnknown = std::ranges::none_of(favorites, [&known](const StoredFavorite& favorite) {
    return std::ranges::any_of(*known, [&](const StoredFavorite& other) { return other.isSameAs(favorite); });
  });
  // A removal that changes nothing must not make a database.
  if (areUnknown) return std::vector<bool>(favorites.size(), false);
  return changeEach(*database_, favorites, deleteFavorite);
}

namespace {

/// The places of the favourites, in the order given. Leaves out those that are not stored.
Outcome<std::vector<std::int64_t>> placesOf(SqliteDatabase& database,
                                            const std::vector<StoredFavorite>& favorites) {
  std::vector<std::int64_t> places;
  for (const StoredFavorite& favorite : favorites) {
    const auto error =
        database.run("SELECT position FROM favorite WHERE kind = ? AND feed = ? AND subject = ?",
                     {nameOf(favorite.kind), favorite.feed, favorite.subject},
                     [&places](const SqliteRow& row) { places.push_back(row.integer(0)); });
    if (error) return *error;
  }
  return places;
}

/// Moves each row to its new place. Places are unique, so that the rows first go to free ones below zero.
std::optional<Error> exchangePlaces(SqliteDatabase& database, const std::vector<std::int64_t>& from,
                                    const std::vector<std::int64_t>& to) {
  constexpr const char* kMove = "UPDATE favorite SET position = ? WHERE position = ?";
  for (std::size_t i = 0; i < from.size(); ++i) {
    if (auto error = database.run(kMove, {-1 - static_cast<std::int64_t>(i), from[i]})) return error;
  }
  for (std::size_t i = 0; i < to.size(); ++i) {
    if (auto error = database.run(kMove, {to[i], -1 - static_cast<std::int64_t>(i)})) return error;
  }
  return std::nullopt;
}

}  // namespace

Outcome<bool> StoredFavorites::reorder(const std::vector<StoredFavorite>& order) {
  bool isChanged = false;
  const auto error = database_->write([&](SqliteDatabase& database) -> std::optional<Error> {
    const auto places = placesOf(database, order);
    if (!places) return places.error();
    std::vector<std::int64_t> sorted = *places;
    std::ranges::sort(sorted);
    isChanged = sorted != *places;
    return isChanged ? exchangePlaces(database, *places, sorted) : std::nullopt;
  });
  return error ? Outcome<bool>(*error) : isChanged;
}

Outcome<Favorites> StoredFavoritesPersister::readFavorites() {
  const auto stored = StoredFavorites(database_).list();
  if (!stored) return stored.error();
  Favorites favorites;
  favorites.reserve(stored->size());
  for (const StoredFavorite& favorite : *stored) favorites.push_back(favoriteOf(favorite));
  return favorites;
}

Favorite StoredFavoritesPersister::favoriteOf(const StoredFavorite& stored) const {
  switch (stored.kind) {
    case FavoriteKind::place:
      return FavoritePlace{stored.subject};
    case FavoriteKind::route:
      return FavoriteRoute{stored.subject};
    case FavoriteKind::region:
      return FavoriteRegion{stored.subject};
    case FavoriteKind::line:
      break;
  }
  return FavoriteTransitLine{resolve_(stored)};
}

}  // namespace linewatch

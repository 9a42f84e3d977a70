#include "storage/stored_favorites.h"

#include <algorithm>
#include <array>
#include <optional>
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
  const auto error = database.run("INSERT OR IGNORE INTO favorite (kind, feed, subject) VALUES (?, ?, ?)",
                                  {nameOf(favorite.kind), favorite.feed, favorite.subject});
  return error ? Outcome<bool>(*error) : database.changedRowCount() > 0;
}

Outcome<bool> deleteFavorite(SqliteDatabase& database, const StoredFavorite& favorite) {
  const auto error = database.run("DELETE FROM favorite WHERE kind = ? AND feed = ? AND subject = ?",
                                  {nameOf(favorite.kind), favorite.feed, favorite.subject});
  return error ? Outcome<bool>(*error) : database.changedRowCount() > 0;
}

Outcome<std::vector<StoredFavorite>> StoredFavorites::list() const {
  std::vector<StoredFavorite> favorites;
  std::vector<std::string> unknownKinds;
  const auto error = database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT kind, feed, subject FROM favorite ORDER BY position", {},
                        [&](const SqliteRow& row) {
                          const std::string name = row.text(0);
                          if (const auto kind = kindNamed(name)) {
                            favorites.push_back({*kind, row.text(1), row.text(2)});
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

Outcome<std::vector<bool>> StoredFavorites::remove(const std::vector<StoredFavorite>& favorites) {
  const auto known = list();
  if (!known) return known.error();
  const bool areUnknown = std::ranges::none_of(favorites, [&known](const StoredFavorite& favorite) {
    return std::ranges::find(*known, favorite) != known->end();
  });
  // A removal that changes nothing must not make a database.
  if (areUnknown) return std::vector<bool>(favorites.size(), false);
  return changeEach(*database_, favorites, deleteFavorite);
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
  return FavoriteTransitLine{resolve_(stored.feed, stored.subject)};
}

}  // namespace linewatch

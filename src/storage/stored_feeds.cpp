#include "storage/stored_feeds.h"

#include <algorithm>

namespace linewatch {

Outcome<std::vector<StoredFeed>> StoredFeeds::list() const {
  std::vector<StoredFeed> feeds;
  const auto error = database_->read([&](SqliteDatabase& database) {
    return database.run("SELECT name, gtfs, alerts FROM feed ORDER BY position", {},
                        [&](const SqliteRow& row) {
                          feeds.push_back({row.text(0), row.text(1), row.text(2)});
                        });
  });
  return error ? Outcome<std::vector<StoredFeed>>(*error) : std::move(feeds);
}

Outcome<bool> StoredFeeds::add(const StoredFeed& feed) {
  bool isNew = false;
  const auto error = database_->write([&](SqliteDatabase& database) {
    auto failed = database.run("INSERT OR IGNORE INTO feed (name, gtfs, alerts) VALUES (?, ?, ?)",
                               {feed.name, feed.gtfs, feed.alerts});
    isNew = database.changedRowCount() > 0;
    return failed;
  });
  return error ? Outcome<bool>(*error) : isNew;
}

Outcome<bool> StoredFeeds::remove(std::string_view name) {
  const auto known = list();
  if (!known) return known.error();
  if (std::ranges::find(*known, name, &StoredFeed::name) == known->end()) return false;
  // Another program may have removed it meanwhile.
  bool isRemoved = false;
  const auto error = database_->write([&](SqliteDatabase& database) {
    auto failed = database.run("DELETE FROM feed WHERE name = ?", {name});
    isRemoved = database.changedRowCount() > 0;
    return failed;
  });
  return error ? Outcome<bool>(*error) : isRemoved;
}

}  // namespace linewatch

#include "desktop/storage/feed_cache.h"

namespace linewatch::desktop {

namespace {

CachedDocument documentIn(const SqliteRow& row) {
  return {row.text(0), Date(Seconds(row.real(1))), row.optionalText(2), row.optionalText(3), row.bytes(4)};
}

}  // namespace

std::optional<CachedDocument> FeedCache::find(std::string_view feed, std::string_view kind,
                                              std::string_view location) const {
  std::optional<CachedDocument> document;
  database_->report(database_->read([&](SqliteDatabase& database) {
    document.reset();
    return database.run(
        "SELECT location, fetched, etag, last_modified, bytes FROM document "
        "WHERE feed = ? AND kind = ? AND location = ?",
        {feed, kind, location}, [&](const SqliteRow& row) { document = documentIn(row); });
  }));
  return document;
}

void FeedCache::store(std::string_view feed, std::string_view kind, const CachedDocument& document) {
  database_->report(database_->write([&](SqliteDatabase& database) {
    return database.run(
        "INSERT OR REPLACE INTO document (feed, kind, location, fetched, etag, last_modified, bytes) "
        "VALUES (?, ?, ?, ?, ?, ?, ?)",
        {feed, kind, document.location, secondsOf(document.fetched), parameterOf(document.etag),
         parameterOf(document.lastModified), document.bytes});
  }));
}

void FeedCache::confirm(std::string_view feed, std::string_view kind, Date fetched) {
  database_->report(database_->write([&](SqliteDatabase& database) {
    return database.run("UPDATE document SET fetched = ? WHERE feed = ? AND kind = ?",
                        {secondsOf(fetched), feed, kind});
  }));
}

void FeedCache::remove(std::string_view feed) {
  database_->report(database_->write(
      [&](SqliteDatabase& database) { return database.run("DELETE FROM document WHERE feed = ?", {feed}); }));
}

}  // namespace linewatch::desktop

#include "storage/feed_cache.h"

namespace linewatch {

namespace {

CachedDocument documentIn(const SqliteRow& row) {
  return {row.text(0), Date(Seconds(row.real(1))), row.optionalText(2), row.optionalText(3), row.bytes(4)};
}

}  // namespace

std::optional<CachedDocument> FeedCache::find(std::string_view feed, std::string_view kind,
                                              std::string_view location) const {
  if (isHeldBack()) return std::nullopt;
  std::optional<CachedDocument> document;
  database_->report(database_->read([&](SqliteDatabase& database) {
    return database.run(
        "SELECT location, fetched, etag, last_modified, bytes FROM document "
        "WHERE feed = ? AND kind = ? AND location = ?",
        {feed, kind, location}, [&](const SqliteRow& row) { document = documentIn(row); });
  }));
  return document;
}

void FeedCache::store(std::string_view feed, std::string_view kind, CachedDocument document) {
  write([feed = std::string(feed), kind = std::string(kind),
         document = std::move(document)](SqliteDatabase& database) {
    return database.run(
        "INSERT OR REPLACE INTO document (feed, kind, location, fetched, etag, last_modified, bytes) "
        "VALUES (?, ?, ?, ?, ?, ?, ?)",
        {feed, kind, document.location, secondsOf(document.fetched), parameterOf(document.etag),
         parameterOf(document.lastModified), document.bytes});
  });
}

void FeedCache::confirm(std::string_view feed, std::string_view kind, Date fetched) {
  write([feed = std::string(feed), kind = std::string(kind), fetched](SqliteDatabase& database) {
    return database.run("UPDATE document SET fetched = ? WHERE feed = ? AND kind = ?",
                        {secondsOf(fetched), feed, kind});
  });
}

void FeedCache::storeStops(std::string_view feed, std::string_view location,
                           std::vector<CachedStopPage> pages) {
  write([feed = std::string(feed), location = std::string(location),
         pages = std::move(pages)](SqliteDatabase& database) {
    auto error = database.run("DELETE FROM stop_page WHERE feed = ? AND location = ?", {feed, location});
    for (const CachedStopPage& page : pages) {
      if (error) break;
      error = database.run("INSERT INTO stop_page (feed, location, first_id, stops) VALUES (?, ?, ?, ?)",
                           {feed, location, page.firstId, page.text});
    }
    return error;
  });
}

std::optional<std::string> FeedCache::stopPage(std::string_view feed, std::string_view location,
                                               std::string_view id) const {
  std::optional<std::string> page;
  database_->report(database_->read([&](SqliteDatabase& database) {
    return database.run(
        "SELECT stops FROM stop_page WHERE feed = ? AND location = ? AND first_id <= ? "
        "ORDER BY first_id DESC LIMIT 1",
        {feed, location, id}, [&](const SqliteRow& row) { page = row.text(0); });
  }));
  return page;
}

void FeedCache::remove(std::string_view feed) {
  write([feed = std::string(feed)](SqliteDatabase& database) {
    if (auto error = database.run("DELETE FROM stop_page WHERE feed = ?", {feed})) return error;
    return database.run("DELETE FROM document WHERE feed = ?", {feed});
  });
}

void FeedCache::holdBack() {
  const MutexLock lock(mutex_);
  heldBack_.emplace();
}

bool FeedCache::isHeldBack() const {
  const MutexLock lock(mutex_);
  return heldBack_.has_value();
}

void FeedCache::writeHeldBack() {
  Operations operations;
  {
    const MutexLock lock(mutex_);
    operations = std::exchange(heldBack_, std::nullopt).value_or(Operations());
  }
  for (auto& operation : operations) database_->save(std::move(operation));
}

void FeedCache::write(StoredDatabase::Operation operation) {
  if (!holdBackIfAsked(operation)) database_->save(std::move(operation));
}

bool FeedCache::holdBackIfAsked(StoredDatabase::Operation& operation) {
  const MutexLock lock(mutex_);
  if (heldBack_) heldBack_->push_back(std::move(operation));
  return heldBack_.has_value();
}

}  // namespace linewatch

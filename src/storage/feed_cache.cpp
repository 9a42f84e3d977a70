#include "storage/feed_cache.h"

#include <cstdint>

#include "shared/failure.h"

namespace linewatch {

namespace {

CachedDocument documentIn(const SqliteRow& row) {
  CachedDocument document{.location = row.text(0),
                          .fetched = Date(Seconds(row.real(1))),
                          .etag = row.optionalText(2),
                          .lastModified = row.optionalText(3),
                          .bytes = row.bytes(4)};
  if (!row.isNull(5)) document.freshFor = Seconds(row.real(5));
  return document;
}

PostponedFetch postponedIn(const SqliteRow& row) {
  return {.location = row.text(0),
          .failed = Date(Seconds(row.real(1))),
          .retryAfter = Date(Seconds(row.real(2))),
          .error = failure(static_cast<FailureCode>(row.integer(3)), "", "", row.text(4))};
}

std::optional<Error> forgetPostponed(SqliteDatabase& database, std::string_view feed, std::string_view kind) {
  return database.run("DELETE FROM postponed WHERE feed = ? AND kind = ?", {feed, kind});
}

SqliteParameter secondsParameter(const std::optional<Seconds>& seconds) {
  return seconds ? SqliteParameter(seconds->count()) : SqliteParameter();
}

}  // namespace

std::optional<CachedDocument> FeedCache::find(std::string_view feed, std::string_view kind,
                                              std::string_view location) const {
  if (isHeldBack()) return std::nullopt;
  std::optional<CachedDocument> document;
  database_->report(database_->read([&](SqliteDatabase& database) {
    return database.run(
        "SELECT location, fetched, etag, last_modified, bytes, fresh_for FROM document "
        "WHERE feed = ? AND kind = ? AND location = ?",
        {feed, kind, location}, [&](const SqliteRow& row) { document = documentIn(row); });
  }));
  return document;
}

void FeedCache::store(std::string_view feed, std::string_view kind, CachedDocument document) {
  write([feed = std::string(feed), kind = std::string(kind),
         document = std::move(document)](SqliteDatabase& database) {
    if (auto error = forgetPostponed(database, feed, kind)) return error;
    return database.run(
        "INSERT OR REPLACE INTO document (feed, kind, location, fetched, etag, last_modified, bytes, "
        "fresh_for) VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
        {feed, kind, document.location, secondsOf(document.fetched), parameterOf(document.etag),
         parameterOf(document.lastModified), document.bytes, secondsParameter(document.freshFor)});
  });
}

void FeedCache::confirm(std::string_view feed, std::string_view kind, Date fetched,
                        std::optional<Seconds> freshFor) {
  write([feed = std::string(feed), kind = std::string(kind), fetched, freshFor](SqliteDatabase& database) {
    if (auto error = forgetPostponed(database, feed, kind)) return error;
    return database.run("UPDATE document SET fetched = ?, fresh_for = ? WHERE feed = ? AND kind = ?",
                        {secondsOf(fetched), secondsParameter(freshFor), feed, kind});
  });
}

void FeedCache::expire(std::string_view feed) {
  write([feed = std::string(feed)](SqliteDatabase& database) {
    if (auto error = database.run("DELETE FROM postponed WHERE feed = ?", {feed})) return error;
    return database.run("UPDATE document SET fresh_for = 0 WHERE feed = ?", {feed});
  });
}

void FeedCache::postpone(std::string_view feed, std::string_view kind, PostponedFetch fetch) {
  write([feed = std::string(feed), kind = std::string(kind),
         fetch = std::move(fetch)](SqliteDatabase& database) {
    return database.run(
        "INSERT OR REPLACE INTO postponed (feed, kind, location, failed, retry_after, code, reason) "
        "VALUES (?, ?, ?, ?, ?, ?, ?)",
        {feed, kind, fetch.location, secondsOf(fetch.failed), secondsOf(fetch.retryAfter),
         static_cast<std::int64_t>(failureCodeOf(fetch.error)), sentenceOf(fetch.error)});
  });
}

std::optional<PostponedFetch> FeedCache::postponed(std::string_view feed, std::string_view kind,
                                                   std::string_view location) const {
  if (isHeldBack()) return std::nullopt;
  std::optional<PostponedFetch> fetch;
  database_->report(database_->read([&](SqliteDatabase& database) {
    return database.run(
        "SELECT location, failed, retry_after, code, reason FROM postponed "
        "WHERE feed = ? AND kind = ? AND location = ?",
        {feed, kind, location}, [&](const SqliteRow& row) { fetch = postponedIn(row); });
  }));
  return fetch;
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
    std::optional<Error> error;
    for (const char* table : {"stop_page", "postponed", "document"}) {
      if (!error) error = database.run(std::string("DELETE FROM ") + table + " WHERE feed = ?", {feed});
    }
    return error;
  });
}

std::shared_ptr<FeedCache> FeedCache::heldBackCopy() const {
  auto copy = std::make_shared<FeedCache>(database_);
  copy->holdBack();
  return copy;
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

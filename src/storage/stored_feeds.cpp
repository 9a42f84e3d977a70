#include "storage/stored_feeds.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace linewatch {

namespace {

struct FeedDocumentName {
  std::string_view name;
  FeedSource StoredFeed::*source;
};
constexpr FeedDocumentName kFeedDocuments[] = {{"gtfs", &StoredFeed::gtfs}, {"alerts", &StoredFeed::alerts}};

/// A row of feed_part.
struct FeedPart {
  std::string_view kind;
  std::string_view name;
  std::string_view value;
};

std::vector<FeedPart> partsOf(const FeedSource& source) {
  std::vector<FeedPart> parts;
  for (const std::string& location : source.locations) parts.push_back({"location", "", location});
  for (const FeedKeys::Field& field : source.keys.headers)
    parts.push_back({"header", field.name, field.value});
  for (const FeedKeys::Field& field : source.keys.query) parts.push_back({"query", field.name, field.value});
  if (!source.keys.key.empty()) parts.push_back({"key", "", source.keys.key});
  if (!source.keys.command.empty()) parts.push_back({"command", "", source.keys.command});
  return parts;
}

/// Kinds of a later version are left out.
void addPart(const std::string& kind, std::string name, std::string value, FeedSource& source) {
  if (kind == "location") {
    source.locations.push_back(std::move(value));
  } else if (kind == "header") {
    source.keys.headers.push_back({std::move(name), std::move(value)});
  } else if (kind == "query") {
    source.keys.query.push_back({std::move(name), std::move(value)});
  } else if (kind == "key") {
    source.keys.key = std::move(value);
  } else if (kind == "command") {
    source.keys.command = std::move(value);
  }
}

std::optional<Error> insertParts(SqliteDatabase& database, const StoredFeed& feed) {
  for (const auto& [document, source] : kFeedDocuments) {
    std::int64_t position = 0;
    for (const FeedPart& part : partsOf(feed.*source)) {
      auto error = database.run(
          "INSERT INTO feed_part (feed, document, position, kind, name, value) VALUES (?, ?, ?, ?, ?, ?)",
          {feed.name, document, position++, part.kind, part.name, part.value});
      if (error) return error;
    }
  }
  return std::nullopt;
}

std::optional<Error> deleteParts(SqliteDatabase& database, std::string_view feed) {
  // Overwrites what it deletes, so that no key stays in the file.
  if (auto error = database.runScript("PRAGMA secure_delete = ON")) return error;
  return database.run("DELETE FROM feed_part WHERE feed = ?", {feed});
}

}  // namespace

Outcome<std::vector<StoredFeed>> StoredFeeds::list() const {
  std::vector<StoredFeed> feeds;
  const auto takeRow = [&feeds](const SqliteRow& row) {
    if (feeds.empty() || feeds.back().name != row.text(0)) feeds.push_back({.name = row.text(0)});
    for (const auto& [document, source] : kFeedDocuments) {
      if (row.text(1) == document) addPart(row.text(2), row.text(3), row.text(4), feeds.back().*source);
    }
  };
  const auto error = database_->read([&](SqliteDatabase& database) {
    return database.run(
        "SELECT feed.name, document, kind, feed_part.name, value FROM feed "
        "LEFT JOIN feed_part ON feed_part.feed = feed.name "
        "ORDER BY feed.position, document, feed_part.position",
        {}, takeRow);
  });
  return error ? Outcome<std::vector<StoredFeed>>(*error) : std::move(feeds);
}

Outcome<bool> StoredFeeds::add(const StoredFeed& feed) {
  bool isNew = false;
  const auto error = database_->write([&](SqliteDatabase& database) {
    auto failed = database.run("INSERT OR IGNORE INTO feed (name) VALUES (?)", {feed.name});
    isNew = database.changedRowCount() > 0;
    return failed || !isNew ? failed : insertParts(database, feed);
  });
  return error ? Outcome<bool>(*error) : isNew;
}

Outcome<bool> StoredFeeds::change(const StoredFeed& feed) {
  bool isKnown = false;
  const auto error = database_->write([&](SqliteDatabase& database) -> std::optional<Error> {
    auto failed = database.run("SELECT 1 FROM feed WHERE name = ?", {feed.name},
                               [&isKnown](const SqliteRow&) { isKnown = true; });
    if (failed || !isKnown) return failed;
    failed = deleteParts(database, feed.name);
    return failed ? failed : insertParts(database, feed);
  });
  return error ? Outcome<bool>(*error) : isKnown;
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
    return failed ? failed : deleteParts(database, name);
  });
  return error ? Outcome<bool>(*error) : isRemoved;
}

}  // namespace linewatch

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/date.h"
#include "shared/mutex.h"
#include "shared/value.h"
#include "storage/state_database.h"

namespace linewatch {

/// A fetched document of a feed, with the validators for the next conditional request.
struct CachedDocument {
  /// Where it was fetched, without keys.
  std::string location;
  Date fetched;
  std::optional<std::string> etag;
  std::optional<std::string> lastModified;
  Bytes bytes;

  bool operator==(const CachedDocument&) const = default;
};

/// A piece of a feed's sorted stops, as text. The first page starts with an empty id.
struct CachedStopPage {
  std::string firstId;
  std::string text;
};

/// The document that was last fetched for each feed and kind ("gtfs", "alerts"), in the cache database. As
/// everything can be fetched again, a failure goes to the log and counts as nothing found. Any thread.
class FeedCache {
 public:
  explicit FeedCache(SharedDatabase database) : database_(std::move(database)) {}

  /// The document, if it was fetched from `location`.
  std::optional<CachedDocument> find(std::string_view feed, std::string_view kind,
                                     std::string_view location) const LINEWATCH_EXCLUDES(mutex_);
  /// Replaces the document.
  void store(std::string_view feed, std::string_view kind, CachedDocument document);
  /// Records that the kept document was still current at `fetched`.
  void confirm(std::string_view feed, std::string_view kind, Date fetched);
  /// Replaces the stops of a timetable. The pages are sorted by their first ids.
  void storeStops(std::string_view feed, std::string_view location, std::vector<CachedStopPage> pages);
  /// The text of the page that has the stop if any has; absent when the stops are not cached.
  std::optional<std::string> stopPage(std::string_view feed, std::string_view location,
                                      std::string_view id) const;
  /// Removes the documents and stops of the feed.
  void remove(std::string_view feed);

  /// From now on changes wait for `writeHeldBack`, and nothing is found before. So a feed that is refused in
  /// the end leaves nothing behind, and each document of a new feed, or with a new key, is really fetched.
  void holdBack() LINEWATCH_EXCLUDES(mutex_);
  void writeHeldBack() LINEWATCH_EXCLUDES(mutex_);

 private:
  using Operations = std::vector<StoredDatabase::Operation>;
  void write(StoredDatabase::Operation operation) LINEWATCH_EXCLUDES(mutex_);
  /// False when changes are not held back.
  bool holdBackIfAsked(StoredDatabase::Operation& operation) LINEWATCH_EXCLUDES(mutex_);

  bool isHeldBack() const LINEWATCH_EXCLUDES(mutex_);

  SharedDatabase database_;
  mutable Mutex mutex_;
  /// Absent unless changes are held back.
  std::optional<Operations> heldBack_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace linewatch

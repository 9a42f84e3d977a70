#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/date.h"
#include "shared/error.h"
#include "shared/mutex.h"
#include "shared/value.h"
#include "storage/state_database.h"

namespace linewatch {

/// A fetched document of a feed, with the validators for the next conditional request.
struct CachedDocument {
  /// The URL or path it was read from, without keys.
  std::string location;
  Date fetched;
  std::optional<std::string> etag;
  std::optional<std::string> lastModified;
  Bytes bytes;
  /// How long after `fetched` the server is not asked again; absent when the server did not say.
  std::optional<Seconds> freshFor = {};

  bool operator==(const CachedDocument&) const = default;
};

/// A fetch that failed because the server wants to be asked later.
struct PostponedFetch {
  /// The URL without keys.
  std::string location;
  Date failed;
  Date retryAfter;
  /// The error without keys.
  Error error;
};

/// A piece of a feed's sorted stops, as text. The first page starts with an empty id.
struct CachedStopPage {
  std::string firstId;
  std::string text;
};

/// The last fetched document of each feed and kind ("gtfs", "alerts"), in the cache database. Everything in
/// it can be fetched again, so a failed read finds nothing, and its error goes to the log. Any thread.
class FeedCache {
 public:
  explicit FeedCache(SharedDatabase database) : database_(std::move(database)) {}

  /// The document, if it was fetched from `location`.
  std::optional<CachedDocument> find(std::string_view feed, std::string_view kind,
                                     std::string_view location) const LINEWATCH_EXCLUDES(mutex_);
  /// Replaces the document, and forgets the postponed fetch.
  void store(std::string_view feed, std::string_view kind, CachedDocument document);
  /// Records that the cached document was still current at `fetched`, and forgets the postponed fetch.
  void confirm(std::string_view feed, std::string_view kind, Date fetched, std::optional<Seconds> freshFor);
  /// Makes the next fetch of the feed's documents ask the server, e.g. because it gets another key.
  void expire(std::string_view feed);

  /// Records that the server wants to be asked later, so that a restarted program waits too.
  void postpone(std::string_view feed, std::string_view kind, PostponedFetch fetch);
  /// The last postponed fetch, if it asked `location`.
  std::optional<PostponedFetch> postponed(std::string_view feed, std::string_view kind,
                                          std::string_view location) const LINEWATCH_EXCLUDES(mutex_);
  /// Replaces the stops of a timetable. The pages are sorted by their first ids.
  void storeStops(std::string_view feed, std::string_view location, std::vector<CachedStopPage> pages);
  /// The text of the page that has the stop if any has; absent when the stops are not cached.
  std::optional<std::string> stopPage(std::string_view feed, std::string_view location,
                                      std::string_view id) const;
  /// Removes everything about the feed.
  void remove(std::string_view feed);

  /// A cache of its own over the same file, whose changes are held back from the start. So this one stays in
  /// use while a new feed is checked.
  std::shared_ptr<FeedCache> heldBackCopy() const;

  /// From now on changes wait for `writeHeldBack`, and until then nothing is found. A new feed is checked
  /// this way: its documents are really fetched, and a refused feed leaves nothing in the cache.
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

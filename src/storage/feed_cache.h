#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/date.h"
#include "shared/value.h"
#include "storage/state_database.h"

namespace linewatch {

/// Something that was fetched for a feed, with what its server wants to be asked with the next time.
struct CachedDocument {
  /// Where it was fetched from.
  std::string location;
  Date fetched;
  std::optional<std::string> etag;
  std::optional<std::string> lastModified;
  Bytes bytes;

  bool operator==(const CachedDocument&) const = default;
};

/// What was last fetched for each feed, one document a kind ("gtfs", "alerts" …), in the cache database. It
/// can all be fetched again, so failures go to the log and count as nothing found. Any thread.
class FeedCache {
 public:
  explicit FeedCache(SharedDatabase database) : database_(std::move(database)) {}

  /// The document, unless it came from another location than the feed has now.
  std::optional<CachedDocument> find(std::string_view feed, std::string_view kind,
                                     std::string_view location) const;
  /// Keeps the document in place of the one before.
  void store(std::string_view feed, std::string_view kind, CachedDocument document);
  /// Notes that the kept document was still current at `fetched`.
  void confirm(std::string_view feed, std::string_view kind, Date fetched);
  /// Forgets all of the feed.
  void remove(std::string_view feed);

  /// From now on all that changes the cache waits for `writeHeldBack`, and is not seen before: for a feed
  /// that may not come to be added, of which nothing is to be left.
  void holdBack();
  void writeHeldBack();

 private:
  using Operations = std::vector<StoredDatabase::Operation>;
  void write(StoredDatabase::Operation operation);

  SharedDatabase database_;
  std::mutex mutex_;
  /// Absent when nothing is held back.
  std::optional<Operations> heldBack_;
};

}  // namespace linewatch

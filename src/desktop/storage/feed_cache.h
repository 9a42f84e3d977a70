#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "desktop/storage/state_database.h"
#include "platform/date.h"
#include "platform/value.h"

namespace linewatch::desktop {

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
  void store(std::string_view feed, std::string_view kind, const CachedDocument& document);
  /// Notes that the kept document was still current at `fetched`.
  void confirm(std::string_view feed, std::string_view kind, Date fetched);
  /// Forgets all of the feed.
  void remove(std::string_view feed);

 private:
  SharedDatabase database_;
};

}  // namespace linewatch::desktop

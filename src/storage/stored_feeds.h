#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/outcome.h"
#include "storage/state_database.h"

namespace linewatch {

/// Names that no feed of the user's may have: those of the sample city and of the feed of a run without saved
/// state.
inline constexpr std::string_view kSampleFeedName = "sample";
inline constexpr std::string_view kGivenFeedName = "given";

/// A feed that the user has set up.
struct StoredFeed {
  std::string name;
  /// The schedule: a folder, a zip file or a URL.
  std::string gtfs;
  /// The service alerts: a file or a URL; empty for a feed without.
  std::string alerts;

  bool operator==(const StoredFeed&) const = default;
};

/// The feeds in the state database, in the order in which they were added. Any thread.
class StoredFeeds {
 public:
  explicit StoredFeeds(SharedDatabase database) : database_(std::move(database)) {}

  Outcome<std::vector<StoredFeed>> list() const;
  /// Adds the feed; false when there is one of that name, which stays as it is.
  Outcome<bool> add(const StoredFeed& feed);
  /// False when there is no such feed. Favourites of the feed stay, as it may come back.
  Outcome<bool> remove(std::string_view name);

 private:
  SharedDatabase database_;
};

}  // namespace linewatch

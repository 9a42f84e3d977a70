#pragma once

#include <filesystem>
#include <variant>
#include <vector>

#include "shared/outcome.h"
#include "storage/state_database.h"
#include "storage/stored_favorites.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// The feeds that are shown: the one given for a run, else the user's own. The sample city is shown only to a
/// user who has neither feeds nor favourite lines of a feed that was removed. Any thread.
class ShownFeeds {
 public:
  explicit ShownFeeds(StoredFeed given) : source_(std::move(given)) {}
  /// `sampleCity`: the folder of the sample city.
  ShownFeeds(SharedDatabase state, std::filesystem::path sampleCity)
      : source_(Saved{std::move(state), std::move(sampleCity)}) {}

  /// The feeds as they are now; empty after the user has removed the feeds of all favourites. An error when
  /// they cannot be read or were lost with a damaged database: the sample city must not take their place.
  Outcome<std::vector<StoredFeed>> read() const;

 private:
  struct Saved {
    SharedDatabase state;
    std::filesystem::path sampleCity;
  };
  std::variant<StoredFeed, Saved> source_;
};

/// True when the sample city is shown. A feed of the user's cannot have its name.
inline bool isSampleCity(const std::vector<StoredFeed>& feeds) {
  return !feeds.empty() && feeds.front().name == kSampleFeedName;
}

/// Whether the favourite is a line of a feed that the user has added, and perhaps removed since.
inline bool isOfAddedFeed(const StoredFavorite& favorite) {
  return favorite.kind == FavoriteKind::line && favorite.feed != kSampleFeedName;
}

}  // namespace linewatch

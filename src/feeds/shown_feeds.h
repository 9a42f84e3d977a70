#pragma once

#include <filesystem>
#include <variant>
#include <vector>

#include "shared/outcome.h"
#include "storage/state_database.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// Which feeds are shown: the one given for a run, the user's own, or the sample city until there are any.
/// Any thread.
class ShownFeeds {
 public:
  explicit ShownFeeds(StoredFeed given) : source_(std::move(given)) {}
  /// `sampleCity`: the folder of it.
  ShownFeeds(SharedDatabase state, std::filesystem::path sampleCity)
      : source_(Saved{std::move(state), std::move(sampleCity)}) {}

  /// As they are now. An error when they cannot be read, or were lost with a damaged database: a city that
  /// nobody asked for must not stand in for them.
  Outcome<std::vector<StoredFeed>> read() const;

 private:
  struct Saved {
    SharedDatabase state;
    std::filesystem::path sampleCity;
  };
  std::variant<StoredFeed, Saved> source_;
};

/// No feed of the user's own has the name.
inline bool isSampleCity(const std::vector<StoredFeed>& feeds) {
  return !feeds.empty() && feeds.front().name == kSampleFeedName;
}

}  // namespace linewatch

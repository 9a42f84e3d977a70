#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/outcome.h"
#include "storage/state_database.h"

namespace linewatch {

/// Names that the program uses itself, so that no feed of the user can have them: the sample city, and the
/// feed of a run without saved state.
inline constexpr std::string_view kSampleFeedName = "sample";
inline constexpr std::string_view kGivenFeedName = "given";

/// The headers and query parameters that identify the user to a server. All values are secret.
struct FeedKeys {
  struct Field {
    std::string name;
    /// The word KEY in it stands for the key, e.g. "apikey KEY".
    std::string value;

    bool operator==(const Field&) const = default;
  };

  std::vector<Field> headers;
  std::vector<Field> query;
  /// The key; empty when a command prints it or when no value holds the word KEY.
  std::string key;
  /// A command whose first line of output is the key, split as by `shellWords`; empty: none.
  std::string command;

  bool isEmpty() const { return headers.empty() && query.empty(); }
  bool operator==(const FeedKeys&) const = default;
};

/// Where the timetable or the alerts of a feed are.
struct FeedSource {
  FeedSource() = default;
  /// One location without keys; none when it is empty.
  FeedSource(std::string location) {
    if (!location.empty()) locations.push_back(std::move(location));
  }
  FeedSource(const char* location) : FeedSource(std::string(location)) {}

  /// Files or URLs, a timetable also folders. Several together are one timetable, or one list of alerts.
  std::vector<std::string> locations;
  FeedKeys keys;

  bool operator==(const FeedSource&) const = default;
};

/// A feed that the user has set up.
struct StoredFeed {
  std::string name;
  FeedSource gtfs;
  /// Without locations for a feed that has no alerts.
  FeedSource alerts;

  bool operator==(const StoredFeed&) const = default;
};

/// The feeds in the state database, in the order in which they were added. Any thread.
class StoredFeeds {
 public:
  explicit StoredFeeds(SharedDatabase database) : database_(std::move(database)) {}

  Outcome<std::vector<StoredFeed>> list() const;
  /// Adds the feed; false when there is one of that name, which stays as it is.
  Outcome<bool> add(const StoredFeed& feed);
  /// Gives the feed of that name new locations and keys; false when there is none.
  Outcome<bool> change(const StoredFeed& feed);
  /// False when there is no such feed. Favourites of the feed stay, as it may come back. The file keeps no
  /// bytes of its keys, nor of keys that `change` replaces.
  Outcome<bool> remove(std::string_view name);

 private:
  SharedDatabase database_;
};

}  // namespace linewatch

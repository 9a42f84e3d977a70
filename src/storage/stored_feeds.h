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

/// The headers and query parameters with the user's key for a server. All values are secret.
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
  /// A command that prints the key as its first line, split by `shellWords`; empty when there is none.
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

  /// Files or URLs; folders too for a timetable. Several locations form one timetable or one list of alerts.
  std::vector<std::string> locations;
  FeedKeys keys;

  bool operator==(const FeedSource&) const = default;
};

/// A feed that the user has set up.
struct StoredFeed {
  std::string name;
  FeedSource gtfs;
  /// Has no locations if the feed has no alerts.
  FeedSource alerts;

  bool operator==(const StoredFeed&) const = default;
};

/// The feeds in the state database, in the order in which they were added. Any thread.
class StoredFeeds {
 public:
  explicit StoredFeeds(SharedDatabase database) : database_(std::move(database)) {}

  Outcome<std::vector<StoredFeed>> list() const;
  /// Adds the feed; false if there is one of that name, which is not changed.
  Outcome<bool> add(const StoredFeed& feed);
  /// Replaces the locations and keys of the feed of that name; false if there is none.
  Outcome<bool> change(const StoredFeed& feed);
  /// Removes the feed; false if there is none of that name. Its favourites stay, because the feed may be
  /// added again. Its keys are overwritten in the file, as are keys that `change` replaces.
  Outcome<bool> remove(std::string_view name);

 private:
  SharedDatabase database_;
};

}  // namespace linewatch

#pragma once

#include <optional>
#include <vector>

#include "app/favorite_lines.h"
#include "feeds/feed_state.h"
#include "feeds/gtfs/line_search.h"
#include "shared/date.h"
#include "shared/error.h"
#include "shared/value.h"
#include "storage/stored_feeds.h"

namespace linewatch::app {

// The JSON objects of `lines`, `favorites` and `feed`; docs/json.md and docs/lists.schema.json describe them.

/// `error`: the error of the first feed whose lines are missing.
Dictionary linesDocument(const std::vector<FoundLine>& lines, const std::optional<Error>& error);

Dictionary favoritesDocument(const std::vector<FavoriteLine>& favorites);

/// A feed in the list.
struct ListedFeed {
  StoredFeed feed;
  /// Absent if the feed was not read.
  std::optional<FeedState> state;
  /// Null if the timetable cannot be read.
  SharedLineIndex lines;
};

/// Contains no keys.
Dictionary feedsDocument(const std::vector<ListedFeed>& feeds, Date now);

}  // namespace linewatch::app

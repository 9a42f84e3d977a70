#pragma once

#include <cstddef>
#include <optional>

#include "feeds/feed_documents.h"
#include "feeds/feed_state.h"
#include "feeds/gtfs/line_index.h"
#include "shared/date.h"
#include "shared/error.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// What was found in a feed.
struct FeedFindings {
  StoredFeed feed;
  std::size_t lineCount = 0;
  /// The different alerts that are in force at that time.
  std::size_t alertCount = 0;
  FeedState state;
  /// Why the agency's own timetable could not be read; the feed has the catalogue's copy then. Else absent.
  std::optional<Error> agencyFailure = {};
};

/// `alerts` has a message.
FeedFindings findingsIn(const StoredFeed& feed, const SharedLineIndex& lines, const FeedAlerts& alerts,
                        Date now);

}  // namespace linewatch

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "feeds/catalogue/feed_findings.h"
#include "feeds/catalogue/feed_proposal.h"
#include "feeds/command_keys.h"
#include "feeds/feed_documents.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "storage/feed_cache.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// How far an adding has come.
struct AddingProgress {
  enum class Step : std::uint8_t { fetchingAlerts, fetchingTimetable, readingTimetable, saving };

  Step step = Step::fetchingAlerts;
  /// Received in this step, as they came over the network. 0 for files.
  std::uint64_t bytes = 0;
  /// Of this step; absent when a server does not say.
  std::optional<std::uint64_t> totalBytes;
  /// Known once the timetable has been read.
  std::optional<std::size_t> lineCount;
  /// The end: the feed as it was added, or the first error, with the code `cancelled` after `cancel`. Absent
  /// while it runs. After an error nothing is saved.
  std::optional<Outcome<FeedFindings>> result;
};

/// Adds a feed on a thread of its own: fetches its alerts and its timetable, and saves the feed if both can
/// be read. Tries a feed that is saved already in the same way. What was fetched is in the cache then, so
/// that the next look-up need not fetch it again. Make one for each try. Any thread may call the members.
class FeedAdding {
 public:
  /// What an adding needs of the program.
  struct Environment {
    StoredFeeds feeds;
    /// The cache of the feeds; it stays in use meanwhile.
    std::shared_ptr<FeedCache> cache;
    /// Called on any thread.
    std::function<Date()> now;
    FeedDocuments::FetcherSource fetcherSource = loadHttpFetcher;
    CommandKeys::Runner runKeyCommand = {};
  };
  /// Called on the adding's threads after the progress has changed, but not again before `progress` has been
  /// called: so a window is not flooded. It must not call the adding; a window dispatches to its main loop.
  /// Not called after `cancel` has returned. May be empty.
  using Observer = std::function<void()>;

  /// Starts at once.
  FeedAdding(FeedProposal proposal, Environment environment, Observer observer = {});
  /// Cancels, and waits for the threads: at most while one table of a timetable is read.
  ~FeedAdding();
  FeedAdding(const FeedAdding&) = delete;
  FeedAdding& operator=(const FeedAdding&) = delete;

  AddingProgress progress() const;
  /// Ends the adding at once, also in a fetch that hangs: the result is there when this returns. A feed that
  /// has been saved, or is just being saved, stays.
  void cancel();
  /// Waits for the result, but not longer than this; true when it is there.
  bool waitFor(Seconds longest) const;

 private:
  class Work;

  const std::unique_ptr<Work> work_;
  std::thread thread_;
};

}  // namespace linewatch

#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "feeds/alerts/alerts_message.h"
#include "feeds/gtfs/gtfs_source.h"
#include "feeds/gtfs/line_index.h"
#include "feeds/http/http_fetcher.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "storage/feed_cache.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// Gets what feeds consist of from where they lie: folders, files, zips and servers.
///
/// What a server gave is kept in the cache and asked for with conditions the next time, alerts not again
/// within 15 seconds and timetables not within a day. When the server cannot be reached, or what it gives
/// cannot be read, a kept timetable goes on to serve, and kept alerts do for 15 minutes: after that nobody
/// knows whether the lines run well. Of a timetable the cache holds the line index, which is read in
/// its place as long as the files are those it was made from. Any thread, several at a time.
class FeedDocuments {
 public:
  using FetcherSource = std::function<Outcome<std::shared_ptr<HttpFetcher>>()>;

  /// A null `cache` keeps nothing; of the sample city nothing is kept either, which is read in no time.
  /// `fetcherSource` is asked when something is first fetched.
  FeedDocuments(std::shared_ptr<FeedCache> cache, std::function<Date()> now,
                FetcherSource fetcherSource = loadHttpFetcher);

  Outcome<SharedLineIndex> lineIndexOf(const StoredFeed& feed);
  /// The alerts that hold now; `held` is what this gave the last time, or null.
  Outcome<SharedAlertsMessage> alertsOf(const StoredFeed& feed, const SharedAlertsMessage& held);
  /// From now on an index of a local timetable is read from the cache but not written to it.
  void keepNoLocalTimetables() { keepsLocalTimetables_ = false; }
  /// Ends what is being fetched, or read from a file, each with an error, and fetches nothing more.
  void stopFetching() { stop_.request_stop(); }

 private:
  struct Kind;
  /// What a server answered: a document, new or as it was kept.
  struct Fetched {
    CachedDocument document;
    bool isNew = false;
  };

  bool keeps(const StoredFeed& feed) const { return cache_ && feed.name != kSampleFeedName; }
  Seconds ageOf(const std::optional<CachedDocument>& kept) const;
  std::optional<CachedDocument> find(const StoredFeed& feed, const Kind& kind) const;
  Outcome<Fetched> fetch(const StoredFeed& feed, const Kind& kind);
  Outcome<Fetched> fetchAnew(const StoredFeed& feed, const Kind& kind,
                             const std::optional<CachedDocument>& kept);
  Outcome<SharedLineIndex> readLocalTimetable(const StoredFeed& feed);
  Outcome<SharedLineIndex> fetchTimetable(const StoredFeed& feed);
  Outcome<SharedLineIndex> readTimetable(const StoredFeed& feed, Outcome<std::unique_ptr<GtfsSource>> source,
                                         CachedDocument document);
  Outcome<SharedAlertsMessage> fetchAlerts(const StoredFeed& feed, const SharedAlertsMessage& held);
  void keepIndex(const StoredFeed& feed, const LineIndex& index, CachedDocument document);

  std::shared_ptr<FeedCache> cache_;
  std::function<Date()> now_;
  FetcherSource fetcherSource_;
  std::stop_source stop_;
  std::atomic<bool> keepsLocalTimetables_ = true;
};

}  // namespace linewatch

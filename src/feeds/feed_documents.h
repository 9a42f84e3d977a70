#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/alerts_message.h"
#include "feeds/command_keys.h"
#include "feeds/gtfs/gtfs_source.h"
#include "feeds/gtfs/line_index.h"
#include "feeds/gtfs/stop_names.h"
#include "feeds/gtfs/stop_search.h"
#include "feeds/http/http_fetcher.h"
#include "shared/date.h"
#include "shared/mutex.h"
#include "shared/outcome.h"
#include "storage/feed_cache.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// The alerts of a feed, and how they came.
struct FeedAlerts {
  /// Null as long as none came.
  SharedAlertsMessage message;
  /// When the message came, or was confirmed. Only with a message.
  Date received{};
  /// For the next conditional request.
  std::string etag, lastModified;
  /// The message is taken as current without asking for this long after `received`.
  Seconds freshFor{};
  /// The outcome of the last attempt: absent after a success.
  std::optional<Error> failure = {};
  /// How many attempts failed in a row, and when the last of them did.
  std::uint32_t failures = 0;
  std::optional<Date> failed = {};
  /// The server wants no request before this; absent when it did not say.
  std::optional<Date> retryAfter = {};
  /// Of a feed with several locations: the alerts of each. The rest then describes all of them together: the
  /// message is there when each location has one, `received` is the earliest time of receipt, and the failure
  /// is that of the first location that failed.
  std::vector<FeedAlerts> parts = {};
};

/// The same alerts after an attempt at `now` that failed.
FeedAlerts afterFailure(FeedAlerts held, const Error& error, Date now);

/// Reads the timetables and alerts of feeds from folders, files, zips and servers.
///
/// A server's documents are kept in the cache and asked for again with conditions: a timetable after a day,
/// alerts after 15 seconds or after the server's max-age, up to 5 minutes. A cached timetable serves as long
/// as the server cannot be reached or sends something that is no timetable. The cache holds a timetable as a
/// line index, which also saves reading the files of a local one as long as they are unchanged. Neither the
/// cache nor an error or the log holds a key. The documents of a feed with several locations are read side by
/// side. Any thread, several at a time.
class FeedDocuments {
 public:
  using FetcherSource = std::function<Outcome<std::shared_ptr<HttpFetcher>>()>;

  /// Without a `cache`, and for the sample city, nothing is cached. `fetcherSource` is called at the first
  /// fetch, `runKeyCommand` for feeds whose key a command prints.
  FeedDocuments(std::shared_ptr<FeedCache> cache, std::function<Date()> now,
                FetcherSource fetcherSource = loadHttpFetcher, CommandKeys::Runner runKeyCommand = {});

  Outcome<SharedLineIndex> lineIndexOf(const StoredFeed& feed);
  /// The names of the feed's stops. They are in the cache beside the line index. Without a cache the
  /// timetable is searched when a stop is first asked for, once for all stops that `alerts` name.
  std::shared_ptr<StopNames> stopNamesOf(const StoredFeed& feed, SharedAlertsMessage alerts = nullptr);
  /// From now on an index of a local timetable is read from the cache but not written to it.
  void keepNoLocalTimetables() { keepsLocalTimetables_ = false; }
  /// The alerts after another attempt to get them. `held` is the answer of the call before, or the default.
  /// After a failure the message before is still there, whatever its age: `stateOf` says whether it serves.
  FeedAlerts alertsOf(const StoredFeed& feed, FeedAlerts held);
  Date now() const { return now_(); }
  /// Ends the fetches, key commands and reads under way, each with an error. Later ones fail at once.
  void stopFetching() { stop_.request_stop(); }

 private:
  struct Kind;
  struct Place;
  /// A document as the server sent it, or the cached one when that is still current.
  struct Fetched {
    CachedDocument document;
    bool isNew = false;
  };

  bool keeps(const StoredFeed& feed) const { return cache_ && feed.name != kSampleFeedName; }
  bool keepsTimetable(const Place& place) const;
  std::optional<CachedDocument> find(const Place& place) const;
  Outcome<HttpRequest> requestOf(const Place& place);
  Outcome<HttpResponse> get(const Place& place, const std::string& etag, const std::string& lastModified);
  std::optional<Error> postponement(const Place& place) const;
  void keepPostponement(const Place& place, const Error& error);
  Outcome<SharedLineIndex> timetable(const Place& place);
  Outcome<Fetched> fetchTimetable(const Place& place, const std::optional<CachedDocument>& kept);
  Outcome<SharedLineIndex> localTimetable(const Place& place);
  Outcome<SharedLineIndex> remoteTimetable(const Place& place);
  Outcome<SharedLineIndex> readTimetable(const Place& place, Outcome<std::unique_ptr<GtfsSource>> source,
                                         CachedDocument document);
  /// Keeps the stops in the cache, or the table in memory where nothing is cached.
  void keepStops(const Place& place, GtfsSource& source);
  std::optional<std::string> stopPage(const Place& place, std::string_view id,
                                      const SharedAlertsMessage& alerts);
  void keepIndex(const Place& place, const LineIndex& index, CachedDocument document);
  FeedAlerts alerts(const Place& place, FeedAlerts held);
  FeedAlerts cachedAlerts(const Place& place, FeedAlerts held) const;
  FeedAlerts localAlerts(const Place& place, FeedAlerts held);
  FeedAlerts remoteAlerts(const Place& place, FeedAlerts held);
  Outcome<FeedAlerts> afterResponse(const Place& place, const FeedAlerts& held, HttpResponse response);
  void keepAlerts(const Place& place, const FeedAlerts& alerts);
  Outcome<SharedAlertsMessage> update(const Place& place, const SharedAlertsMessage& held, Bytes payload,
                                      Date received) const;

  std::shared_ptr<FeedCache> cache_;
  std::function<Date()> now_;
  FetcherSource fetcherSource_;
  CommandKeys commandKeys_;
  std::stop_source stop_;
  std::atomic<bool> keepsLocalTimetables_ = true;

  /// The stops of a timetable that are not in the cache.
  struct UncachedStops {
    /// The stops.txt of a fetched timetable; absent for a local one, which is read again for each search.
    std::optional<std::string> table;
    struct Search {
      StopIds ids;
      /// The stops that were found.
      std::vector<StopPage> pages;
    };
    std::vector<Search> searches;
  };
  std::vector<StopPage> searchStops(const Place& place, const StopIds& ids, UncachedStops& stops) const;

  Mutex stopsMutex_;
  /// By location.
  std::map<std::string, UncachedStops> uncachedStops_ LINEWATCH_GUARDED_BY(stopsMutex_);
};

}  // namespace linewatch

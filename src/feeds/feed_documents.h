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
#include "feeds/gtfs/line_stops.h"
#include "feeds/gtfs/stop_names.h"
#include "feeds/gtfs/stop_search.h"
#include "feeds/http/http_fetcher.h"
#include "feeds/timetable_renewals.h"
#include "shared/date.h"
#include "shared/mutex.h"
#include "shared/outcome.h"
#include "storage/feed_cache.h"
#include "storage/stored_feeds.h"

namespace linewatch {

/// The alerts of a feed, and how they came.
struct FeedAlerts {
  /// Null until alerts have come.
  SharedAlertsMessage message;
  /// When the message came, or was confirmed. Only with a message.
  Date received{};
  /// For the next conditional request.
  std::string etag, lastModified;
  /// The server is not asked again for this long after `received`.
  Seconds freshFor{};
  /// The error of the last attempt; absent after a success.
  std::optional<Error> failure = {};
  /// How many attempts failed in a row, and when the last of them did.
  std::uint32_t failures = 0;
  std::optional<Date> failed = {};
  /// The server wants no request before this; absent when it did not say.
  std::optional<Date> retryAfter = {};
  /// One for each location of a feed with several locations, else empty. The other fields then describe the
  /// whole feed: `message` is null until each location has one, `received` is the earliest time of receipt,
  /// and `failure` is the error of the first location that failed.
  std::vector<FeedAlerts> parts = {};
};

/// The same alerts after an attempt at `now` that failed.
FeedAlerts afterFailure(FeedAlerts held, const Error& error, Date now);

/// Reads the timetables and alerts of feeds from folders, files, zips and servers.
///
/// Documents of servers are cached, and fetched again with a conditional request: a timetable after a day,
/// alerts after 15 seconds or after the server's max-age, at most 5 minutes. The cached timetable is used
/// while the server cannot be reached or sends something else. A timetable is cached as a line index. So the
/// files of a local timetable are read only after they have changed. No key gets into the cache, an error or
/// the log. The locations of a feed are read in parallel. Any thread, several calls at a time.
class FeedDocuments {
 public:
  using FetcherSource = std::function<Outcome<std::shared_ptr<HttpFetcher>>()>;

  /// Nothing is cached without a `cache`, and nothing of the sample city. `fetcherSource` is called before
  /// each fetch, and `runKeyCommand` for a feed whose key a command prints.
  FeedDocuments(std::shared_ptr<FeedCache> cache, std::function<Date()> now,
                FetcherSource fetcherSource = loadHttpFetcher, CommandKeys::Runner runKeyCommand = {});
  /// Ends renewals in the background.
  ~FeedDocuments();

  Outcome<SharedLineIndex> lineIndexOf(const StoredFeed& feed);
  /// The names of the feed's stops. They are in the cache beside the line index. Without a cache the
  /// timetable is searched when a stop is first asked for, once for all stops that `alerts` name.
  std::shared_ptr<StopNames> stopNamesOf(const StoredFeed& feed, const SharedAlertsMessage& alerts = nullptr);
  /// Where a line goes. Reads the whole timetable, and fetches a remote one again.
  Outcome<LineStops> lineStopsOf(const StoredFeed& feed, std::string_view routeId);
  /// For a program that goes on running. From now on a cached timetable that is due is renewed in the
  /// background, which may take as long as bytes come, and is used meanwhile. A timetable that is not cached
  /// and does not come in time is fetched in the background, too. To be called before any read.
  void renewInBackground() { renewals_ = std::make_unique<TimetableRenewals>(); }
  /// From now on a cached timetable that is due, but cannot be renewed, is an error.
  void requireCurrentTimetables() { requiresCurrentTimetables_ = true; }
  /// Whether `lineIndexOf` would give newer lines than the last time. Begins renewals that are due, and does
  /// not wait for them. False without `renewInBackground`.
  bool hasNewerLines(const StoredFeed& feed);
  /// From now on local timetables are read from the cache but not written to it.
  void keepNoLocalTimetables() { keepsLocalTimetables_ = false; }
  /// Tries to get the feed's alerts. `held` is the result of the last call, or the default. After a failure
  /// the result still has the earlier message, however old: `stateOf` says whether it may be shown.
  FeedAlerts alertsOf(const StoredFeed& feed, FeedAlerts held);
  Date now() const { return now_(); }
  /// Ends all running fetches, key commands and reads with an error. Later ones fail at once.
  void stopFetching() { stop_.request_stop(); }

 private:
  struct Kind;
  struct Place;
  /// A timetable in the cache; both are absent if it has none that can be read.
  struct KeptTimetable {
    std::optional<CachedDocument> document;
    SharedLineIndex lines;
  };
  /// The document that the server sent, or the cached one if the server says that it is current.
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
  KeptTimetable keptTimetable(const Place& place) const;
  /// Fetches the timetable, and gives the kept one if it is still current.
  Outcome<SharedLineIndex> freshTimetable(const Place& place, const KeptTimetable& kept);
  /// Begins the renewal in the background if it is due.
  void beginRenewal(const Place& place);
  TimetableRenewals::Result renew(const Place& place);
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
  std::atomic<bool> requiresCurrentTimetables_ = false;
  /// Null unless timetables are renewed in the background.
  std::unique_ptr<TimetableRenewals> renewals_;

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

#include "feeds/feed_documents.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "feeds/alerts/held_alerts.h"
#include "feeds/gtfs/folder_source.h"
#include "feeds/gtfs/gtfs_reader.h"
#include "feeds/gtfs/line_index_encoding.h"
#include "feeds/http/redacted.h"
#include "feeds/zip/zip_source.h"
#include "platform/log.h"
#include "shared/byte_size.h"
#include "shared/failure.h"
#include "shared/file_contents.h"

namespace linewatch {

/// One of the two documents of a feed.
struct FeedDocuments::Kind {
  /// In the cache.
  const char* name;
  std::string StoredFeed::*location;
  std::size_t maximumBytes;

  static const Kind kTimetable;
  static const Kind kAlerts;
};

namespace {

namespace fs = std::filesystem;

// A cached timetable is not asked for again before this.
constexpr Seconds kTimetableFresh{86400};
constexpr Seconds kAlertsFresh{15};
constexpr Seconds kLongestMaxAge{5.0 * 60};

std::string feedCalled(const StoredFeed& feed) { return "feed " + feed.name; }

/// The error with the feed and the location in front: "feed Metro: https://example.org/alerts: timed out".
Error located(const Error& error, const StoredFeed& feed, const std::string& location) {
  return within(feedCalled(feed), within(redacted(location), error));
}

fs::path localPath(const std::string& location) {
  constexpr std::string_view kScheme = "file://";
  return location.starts_with(kScheme) ? location.substr(kScheme.size()) : location;
}

Outcome<std::unique_ptr<GtfsSource>> openTimetable(const std::string& location) {
  const fs::path path = localPath(location);
  std::error_code error;
  if (fs::is_directory(path, error)) return std::unique_ptr<GtfsSource>(std::make_unique<FolderSource>(path));
  return openZip(path);
}

/// Changes when one of the files that a line index is made from changes.
std::string fingerprint(const std::string& location) {
  std::string print;
  const fs::path path = localPath(location);
  for (const fs::path& file :
       {path, path / "agency.txt", path / "feed_info.txt", path / "routes.txt", path / "stops.txt"}) {
    std::error_code error;
    const auto time = fs::last_write_time(file, error);
    if (error) continue;
    const auto size = fs::is_regular_file(file, error) ? fs::file_size(file, error) : 0;
    print += std::to_string(time.time_since_epoch().count()) + ":" + std::to_string(size) + ";";
  }
  return print;
}

SharedLineIndex indexOf(LineIndex::Contents contents) {
  return std::make_shared<const LineIndex>(std::move(contents));
}

std::optional<std::string> nonEmpty(std::string text) {
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

/// The server's Retry-After, counted from `now`.
std::optional<Date> retryAfterOf(const Error& error, Date now) {
  const auto entry = error.info.find(kRetryAfterKey);
  const double* const seconds = entry == error.info.end() ? nullptr : entry->second.get<double>();
  return seconds == nullptr ? std::nullopt : std::optional(now + Seconds(*seconds));
}

/// A document from the future says that the clock was set back, so its age is not known.
bool isYoungerThan(Seconds age, Date received, Date now) { return received <= now && now - received < age; }

}  // namespace

const FeedDocuments::Kind FeedDocuments::Kind::kTimetable = {"gtfs", &StoredFeed::gtfs, 512 * kMebibyte};
const FeedDocuments::Kind FeedDocuments::Kind::kAlerts = {"alerts", &StoredFeed::alerts, 64 * kMebibyte};

FeedDocuments::FeedDocuments(std::shared_ptr<FeedCache> cache, std::function<Date()> now,
                             FetcherSource fetcherSource)
    : cache_(std::move(cache)), now_(std::move(now)), fetcherSource_(std::move(fetcherSource)) {}

FeedAlerts afterFailure(FeedAlerts held, const Error& error, Date now) {
  held.retryAfter = retryAfterOf(error, now);
  held.failed = now;
  held.failure = error;
  ++held.failures;
  return held;
}

std::optional<CachedDocument> FeedDocuments::find(const StoredFeed& feed, const Kind& kind) const {
  return keeps(feed) ? cache_->find(feed.name, kind.name, feed.*kind.location) : std::nullopt;
}

Outcome<HttpResponse> FeedDocuments::get(const StoredFeed& feed, const Kind& kind, std::string etag,
                                         std::string lastModified) {
  const auto fetcher = fetcherSource_();
  if (!fetcher) return fetcher.error();
  const std::string& location = feed.*kind.location;
  const bool isConditional = !etag.empty() || !lastModified.empty();
  HttpRequest request{.url = location,
                      .etag = std::move(etag),
                      .lastModified = std::move(lastModified),
                      .maximumBytes = kind.maximumBytes,
                      .stop = stop_.get_token()};
  auto response = (*fetcher)->fetch(request);
  if (!response) return located(response.error(), feed, location);
  if (response->notModified && !isConditional)
    return located(failure(FailureCode::malformed, "", "",
                           "the server says that nothing changed, but was not asked whether"),
                   feed, location);
  return response;
}

Outcome<SharedLineIndex> FeedDocuments::lineIndexOf(const StoredFeed& feed) {
  return isHttpURL(feed.gtfs) ? remoteTimetable(feed) : localTimetable(feed);
}

Outcome<SharedLineIndex> FeedDocuments::localTimetable(const StoredFeed& feed) {
  const std::optional<CachedDocument> kept = find(feed, Kind::kTimetable);
  const std::string print = keeps(feed) ? fingerprint(feed.gtfs) : "";
  if (kept && kept->etag == print) {
    if (auto contents = decodeLineIndex(kept->bytes)) return indexOf(std::move(*contents));
  }
  return readTimetable(feed, openTimetable(feed.gtfs),
                       {.location = feed.gtfs, .fetched = now_(), .etag = print});
}

Outcome<SharedLineIndex> FeedDocuments::remoteTimetable(const StoredFeed& feed) {
  std::optional<CachedDocument> kept = find(feed, Kind::kTimetable);
  SharedLineIndex cached;
  if (kept) {
    // The program's version before may have cached it in another form.
    if (auto contents = decodeLineIndex(kept->bytes)) cached = indexOf(std::move(*contents));
  }
  if (!cached) kept.reset();
  if (cached && isYoungerThan(kTimetableFresh, kept->fetched, now_())) return cached;

  Outcome<Fetched> fetched = fetchTimetable(feed, kept);
  if (fetched && !fetched->isNew) return cached;
  if (fetched) {
    auto source = openZip(std::move(fetched->document.bytes));
    auto index = readTimetable(feed, std::move(source), std::move(fetched->document));
    if (index) return index;
    fetched = index.error();
  }
  if (!cached || stop_.stop_requested()) return fetched.error();
  logError("%@; going on with the lines known before", {sentenceOf(fetched.error())});
  return cached;
}

Outcome<FeedDocuments::Fetched> FeedDocuments::fetchTimetable(const StoredFeed& feed,
                                                              const std::optional<CachedDocument>& kept) {
  auto response = get(feed, Kind::kTimetable, kept ? kept->etag.value_or("") : "",
                      kept ? kept->lastModified.value_or("") : "");
  if (!response) return response.error();
  if (response->notModified) {
    if (keeps(feed)) cache_->confirm(feed.name, Kind::kTimetable.name, now_());
    return Fetched{*kept};
  }
  return Fetched{{.location = feed.gtfs,
                  .fetched = now_(),
                  .etag = nonEmpty(std::move(response->etag)),
                  .lastModified = nonEmpty(std::move(response->lastModified)),
                  .bytes = std::move(response->body)},
                 true};
}

/// `document`: the cache entry to write, still without bytes.
Outcome<SharedLineIndex> FeedDocuments::readTimetable(const StoredFeed& feed,
                                                      Outcome<std::unique_ptr<GtfsSource>> source,
                                                      CachedDocument document) {
  if (!source) return located(source.error(), feed, feed.gtfs);
  auto contents = readGtfs(**source, feed.name);
  if (!contents) return located(contents.error(), feed, feed.gtfs);
  const SharedLineIndex index = indexOf(std::move(*contents));
  if (keepsTimetable(feed) || isHttpURL(feed.gtfs)) keepStops(feed, **source);
  keepIndex(feed, *index, std::move(document));
  return index;
}

bool FeedDocuments::keepsTimetable(const StoredFeed& feed) const {
  return keeps(feed) && (isHttpURL(feed.gtfs) || keepsLocalTimetables_);
}

/// Lines without names of stops are better than no lines: an error goes to the log only.
void FeedDocuments::keepStops(const StoredFeed& feed, GtfsSource& source) {
  auto pages = readStopPages(source);
  if (!pages) {
    logError("%@; its stops are shown by their ids", {sentenceOf(located(pages.error(), feed, feed.gtfs))});
    pages = std::vector<StopPage>();
  }
  if (keepsTimetable(feed)) {
    std::vector<CachedStopPage> kept;
    for (StopPage& page : *pages) kept.push_back({std::move(page.firstId), std::move(page.text)});
    return cache_->storeStops(feed.name, feed.gtfs, std::move(kept));
  }
  const MutexLock lock(stopsMutex_);
  stopsInMemory_.insert_or_assign(feed.gtfs, *std::move(pages));
}

std::shared_ptr<StopNames> FeedDocuments::stopNamesOf(const StoredFeed& feed) {
  return std::make_shared<StopNames>(
      std::vector<StopNames::PageSource>{[this, feed](std::string_view id) { return stopPage(feed, id); }});
}

std::optional<std::string> FeedDocuments::stopPage(const StoredFeed& feed, std::string_view id) {
  if (keeps(feed)) {
    if (auto page = cache_->stopPage(feed.name, feed.gtfs, id)) return page;
  }
  const auto isRead = [&] {
    const MutexLock lock(stopsMutex_);
    return stopsInMemory_.contains(feed.gtfs);
  };
  if (!isHttpURL(feed.gtfs) && !isRead()) {
    auto source = openTimetable(feed.gtfs);
    auto pages = source ? readStopPages(**source) : Outcome<std::vector<StopPage>>(source.error());
    if (!pages)
      logError("%@; its stops are shown by their ids", {sentenceOf(located(pages.error(), feed, feed.gtfs))});
    const MutexLock lock(stopsMutex_);
    stopsInMemory_.emplace(feed.gtfs, pages ? *std::move(pages) : std::vector<StopPage>());
  }
  const MutexLock lock(stopsMutex_);
  const auto pages = stopsInMemory_.find(feed.gtfs);
  const StopPage* const page = pages == stopsInMemory_.end() ? nullptr : pageWithStop(pages->second, id);
  return page ? std::optional(page->text) : std::nullopt;
}

void FeedDocuments::keepIndex(const StoredFeed& feed, const LineIndex& index, CachedDocument document) {
  if (!keepsTimetable(feed)) return;
  document.bytes = encodeLineIndex(index.contents());
  cache_->store(feed.name, Kind::kTimetable.name, std::move(document));
}

FeedAlerts FeedDocuments::alertsOf(const StoredFeed& feed, FeedAlerts held) {
  if (feed.alerts.empty()) {
    // No fetch failed, so there is nothing to retry.
    return {.failure = failure(FailureCode::unknown, feedCalled(feed), "",
                               "it has no alerts, so nothing is known of its lines")};
  }
  return isHttpURL(feed.alerts) ? remoteAlerts(feed, std::move(held)) : localAlerts(feed, std::move(held));
}

/// A file is read anew each time: no earlier message stands in for a file that cannot be read.
FeedAlerts FeedDocuments::localAlerts(const StoredFeed& feed, FeedAlerts held) {
  const auto failed = [&](const Error& error) {
    held.message = nullptr;
    return afterFailure(std::move(held), error, now_());
  };
  Outcome<Bytes> payload =
      bytesOf(localPath(feed.alerts),
              {.bytes = Kind::kAlerts.maximumBytes, .time = kFetchTimeout, .stop = stop_.get_token()});
  if (!payload) return failed(within(feedCalled(feed), payload.error()));
  auto message = update(feed, held.message, *std::move(payload), now_());
  if (!message) return failed(message.error());
  return {.message = *std::move(message), .received = now_()};
}

FeedAlerts FeedDocuments::remoteAlerts(const StoredFeed& feed, FeedAlerts held) {
  if (!held.message) held = cachedAlerts(feed, std::move(held));
  const Date now = now_();
  if (held.message && !held.failure && isYoungerThan(held.freshFor, held.received, now)) return held;
  if (held.retryAfter && *held.failed <= now && now < *held.retryAfter) return held;
  auto response = get(feed, Kind::kAlerts, held.etag, held.lastModified);
  if (!response) return afterFailure(std::move(held), response.error(), now_());
  auto alerts = afterResponse(feed, held, *std::move(response));
  return alerts ? *std::move(alerts) : afterFailure(std::move(held), alerts.error(), now_());
}

/// The alerts that an earlier run has cached; `held` when there are none that can be read.
FeedAlerts FeedDocuments::cachedAlerts(const StoredFeed& feed, FeedAlerts held) const {
  std::optional<CachedDocument> kept = find(feed, Kind::kAlerts);
  if (!kept) return held;
  auto message = update(feed, nullptr, std::move(kept->bytes), kept->fetched);
  if (!message) return held;
  held.message = *std::move(message);
  held.received = kept->fetched;
  held.etag = std::move(kept->etag).value_or("");
  held.lastModified = std::move(kept->lastModified).value_or("");
  held.freshFor = kAlertsFresh;
  return held;
}

Outcome<FeedAlerts> FeedDocuments::afterResponse(const StoredFeed& feed, const FeedAlerts& held,
                                                 HttpResponse response) {
  FeedAlerts alerts{
      .received = now_(),
      .freshFor = std::clamp(response.maxAge.value_or(kAlertsFresh), kAlertsFresh, kLongestMaxAge)};
  if (response.notModified) {
    alerts.message = held.message;
    alerts.etag = held.etag;
    alerts.lastModified = held.lastModified;
    if (keeps(feed)) cache_->confirm(feed.name, Kind::kAlerts.name, alerts.received);
    return alerts;
  }
  auto message = update(feed, held.message, std::move(response.body), alerts.received);
  if (!message) return message.error();
  alerts.message = *std::move(message);
  alerts.etag = std::move(response.etag);
  alerts.lastModified = std::move(response.lastModified);
  keepAlerts(feed, alerts);
  return alerts;
}

void FeedDocuments::keepAlerts(const StoredFeed& feed, const FeedAlerts& alerts) {
  if (!keeps(feed)) return;
  cache_->store(feed.name, Kind::kAlerts.name,
                {.location = feed.alerts,
                 .fetched = alerts.received,
                 .etag = nonEmpty(alerts.etag),
                 .lastModified = nonEmpty(alerts.lastModified),
                 .bytes = alerts.message->payload()});
}

/// The alerts that hold after a payload came.
Outcome<SharedAlertsMessage> FeedDocuments::update(const StoredFeed& feed, const SharedAlertsMessage& held,
                                                   Bytes payload, Date received) const {
  auto message = readAlertsMessage(std::move(payload));
  if (message && !hasPlausibleTime(**message, received)) {
    logError(
        "feed %@: its alerts say that they were written at %lu s since 1970, after they came; the time of "
        "receipt counts",
        {feed.name, (*message)->timestamp()});
    message = withoutTime(**message);
  }
  if (message) message = updatedAlerts(held, *message);
  return message ? message : located(message.error(), feed, feed.alerts);
}

}  // namespace linewatch

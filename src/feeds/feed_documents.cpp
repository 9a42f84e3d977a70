#include "feeds/feed_documents.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "feeds/alerts/held_alerts.h"
#include "feeds/feed_keys.h"
#include "feeds/gtfs/folder_source.h"
#include "feeds/gtfs/gtfs_reader.h"
#include "feeds/gtfs/line_index_encoding.h"
#include "feeds/gtfs/merged_lines.h"
#include "feeds/http/redacted.h"
#include "feeds/side_by_side.h"
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
  FeedSource StoredFeed::*source;
  std::size_t maximumBytes;

  static const Kind kTimetable;
  static const Kind kAlerts;
};

/// One location of one of the documents.
struct FeedDocuments::Place {
  const StoredFeed& feed;
  const Kind& kind;
  std::size_t index = 0;
  /// Whether the fetch may take as long as bytes come, because nobody waits for it.
  bool isInBackground = false;

  const FeedSource& source() const { return feed.*kind.source; }
  const std::string& location() const { return source().locations[index]; }
  /// The location without keys, for messages and the cache.
  std::string safeLocation() const { return redacted(location()); }
  /// The name of the cache entry, e.g. "alerts" for the first location and "alerts 2" for the second. It has
  /// a number because two locations that differ only in their keys have the same safe location.
  std::string cacheKind() const {
    return index == 0 ? kind.name : kind.name + (" " + std::to_string(index + 1));
  }
  /// The name of the location's stops in the cache.
  std::string stopsKey() const { return cacheKind() + " " + safeLocation(); }
  /// The name of the timetable among the renewals.
  std::string renewalKey() const { return feed.name + ": " + stopsKey(); }
  /// The error with the feed and the location in front: "feed Metro: https://example.org/alerts: timed out".
  Error located(const Error& error) const {
    return within("feed " + feed.name, within(safeLocation(), error));
  }
  void logStopsError(const Error& error) const {
    logError("%@; its stops are shown by their ids", {sentenceOf(located(error))});
  }
};

namespace {

namespace fs = std::filesystem;

// A cached timetable is not asked for again before this.
constexpr Seconds kTimetableFresh{86400};
// A renewal in the background that failed is tried again after this.
constexpr Seconds kRenewalRetry{15.0 * 60};
constexpr Seconds kAlertsFresh{15};
constexpr Seconds kLongestMaxAge{5.0 * 60};

std::string feedCalled(const StoredFeed& feed) { return "feed " + feed.name; }

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

/// A text of the times and sizes of the timetable's files. It differs after one of them has changed.
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

bool haveMessages(const std::vector<FeedAlerts>& parts) {
  return std::ranges::find(parts, nullptr, &FeedAlerts::message) == parts.end();
}

/// The alerts of all locations together, still without a message.
FeedAlerts together(std::vector<FeedAlerts> parts) {
  FeedAlerts all;
  if (haveMessages(parts)) all.received = std::ranges::min(parts, {}, &FeedAlerts::received).received;
  for (const FeedAlerts& part : parts) {
    if (!part.failure || all.failure) continue;
    all.failure = part.failure;
    all.failures = part.failures;
    all.failed = part.failed;
    all.retryAfter = part.retryAfter;
  }
  all.parts = std::move(parts);
  return all;
}

std::vector<SharedAlertsMessage> messagesOf(const std::vector<FeedAlerts>& parts) {
  std::vector<SharedAlertsMessage> messages;
  for (const FeedAlerts& part : parts) messages.push_back(part.message);
  return messages;
}

StopIds stopIdsIn(const AlertsMessage& alerts) {
  StopIds ids;
  for (const AlertsMessage::Entity& entity : alerts.entities()) {
    for (const AlertSelector& selector : alerts.selectors(entity)) {
      if (selector.namesStop()) ids.emplace(selector.stopId);
    }
  }
  return ids;
}

/// False for a document from the future: the clock was set back, so its age is not known.
bool isYoungerThan(Seconds age, Date received, Date now) { return received <= now && now - received < age; }

}  // namespace

const FeedDocuments::Kind FeedDocuments::Kind::kTimetable = {"gtfs", &StoredFeed::gtfs, 512 * kMebibyte};
const FeedDocuments::Kind FeedDocuments::Kind::kAlerts = {"alerts", &StoredFeed::alerts, 64 * kMebibyte};

FeedDocuments::FeedDocuments(std::shared_ptr<FeedCache> cache, std::function<Date()> now,
                             FetcherSource fetcherSource, CommandKeys::Runner runKeyCommand)
    : cache_(std::move(cache)),
      now_(std::move(now)),
      fetcherSource_(std::move(fetcherSource)),
      commandKeys_(std::move(runKeyCommand)) {}

FeedDocuments::~FeedDocuments() {
  if (!renewals_) return;
  stopFetching();
  renewals_->finish();
}

FeedAlerts afterFailure(FeedAlerts held, const Error& error, Date now) {
  const std::optional<Seconds> wait = retryAfterOf(error);
  held.retryAfter = wait ? std::optional(now + *wait) : std::nullopt;
  held.failed = now;
  held.failure = error;
  ++held.failures;
  return held;
}

std::optional<CachedDocument> FeedDocuments::find(const Place& place) const {
  if (!keeps(place.feed)) return std::nullopt;
  return cache_->find(place.feed.name, place.cacheKind(), place.safeLocation());
}

/// The request for the location, with its keys.
Outcome<HttpRequest> FeedDocuments::requestOf(const Place& place) {
  HttpRequest request{
      .url = place.location(), .maximumBytes = place.kind.maximumBytes, .stop = stop_.get_token()};
  const FeedKeys& keys = place.source().keys;
  std::string key = keys.key;
  if (!keys.command.empty() && wantsKey(keys)) {
    auto printed = commandKeys_.keyOf(keys.command, request.stop);
    if (!printed) return printed.error();
    key = *std::move(printed);
  }
  addKeys(keys, key, request);
  if (place.isInBackground) {
    request.timeout = kLongestFetch;
    request.idleTimeout = kFetchTimeout;
  }
  return request;
}

Outcome<HttpResponse> FeedDocuments::get(const Place& place, const std::string& etag,
                                         const std::string& lastModified) {
  if (auto error = postponement(place)) return *std::move(error);
  const auto fetcher = fetcherSource_();
  if (!fetcher) return fetcher.error();
  auto request = requestOf(place);
  if (!request) return place.located(request.error());
  request->etag = etag;
  request->lastModified = lastModified;
  auto response = (*fetcher)->fetch(*request);
  if (!response && failureCodeOf(response.error()) == FailureCode::keyWanted)
    commandKeys_.forget(place.source().keys.command);
  if (!response) {
    const Error error = redacted(response.error(), request->secrets);
    keepPostponement(place, error);
    return place.located(error);
  }
  if (response->notModified && etag.empty() && lastModified.empty())
    return place.located(failure(FailureCode::malformed, "", "",
                                 "the server says that nothing changed, but was not asked whether"));
  return response;
}

/// The error of an earlier fetch whose Retry-After is still to come, with the rest of that time. A restarted
/// program has forgotten it, and the cache has not.
std::optional<Error> FeedDocuments::postponement(const Place& place) const {
  if (!keeps(place.feed)) return std::nullopt;
  const auto fetch = cache_->postponed(place.feed.name, place.cacheKind(), place.safeLocation());
  const Date now = now_();
  if (!fetch || now < fetch->failed || now >= fetch->retryAfter) return std::nullopt;
  Error error = place.located(fetch->error);
  error.info.insert_or_assign(kRetryAfterKey, (fetch->retryAfter - now).count());
  return error;
}

void FeedDocuments::keepPostponement(const Place& place, const Error& error) {
  const std::optional<Seconds> wait = retryAfterOf(error);
  if (!keeps(place.feed) || !wait) return;
  const Date now = now_();
  cache_->postpone(
      place.feed.name, place.cacheKind(),
      {.location = place.safeLocation(), .failed = now, .retryAfter = now + *wait, .error = error});
}

Outcome<SharedLineIndex> FeedDocuments::lineIndexOf(const StoredFeed& feed) {
  const std::size_t count = feed.gtfs.locations.size();
  if (count == 0) return failure(FailureCode::notFound, feedCalled(feed), "", "it has no timetable");
  std::vector<SharedLineIndex> indexes(count);
  std::vector<std::optional<Error>> errors(count);
  runSideBySide(count, [&](std::size_t index) {
    auto lines = timetable({feed, Kind::kTimetable, index});
    if (lines) {
      indexes[index] = *std::move(lines);
    } else {
      errors[index] = lines.error();
    }
  });
  const auto error = std::ranges::find_if(errors, [](const auto& found) { return found.has_value(); });
  return error == errors.end() ? Outcome<SharedLineIndex>(mergedLines(indexes)) : **error;
}

Outcome<SharedLineIndex> FeedDocuments::timetable(const Place& place) {
  return isHttpURL(place.location()) ? remoteTimetable(place) : localTimetable(place);
}

Outcome<SharedLineIndex> FeedDocuments::localTimetable(const Place& place) {
  const std::optional<CachedDocument> kept = find(place);
  const std::string print = keeps(place.feed) ? fingerprint(place.location()) : "";
  if (kept && kept->etag == print) {
    if (auto contents = decodeLineIndex(kept->bytes)) return indexOf(std::move(*contents));
  }
  return readTimetable(place, openTimetable(place.location()),
                       {.location = place.safeLocation(), .fetched = now_(), .etag = print});
}

FeedDocuments::KeptTimetable FeedDocuments::keptTimetable(const Place& place) const {
  std::optional<CachedDocument> kept = find(place);
  if (!kept) return {};
  // An earlier version of the program may have cached it in another form.
  auto contents = decodeLineIndex(kept->bytes);
  if (!contents) return {};
  return {std::move(kept), indexOf(std::move(*contents))};
}

Outcome<SharedLineIndex> FeedDocuments::remoteTimetable(const Place& place) {
  const KeptTimetable kept = keptTimetable(place);
  if (kept.lines) {
    const Seconds fresh = kept.document->freshFor.value_or(kTimetableFresh);
    const bool isFresh = isYoungerThan(fresh, kept.document->fetched, now_());
    if (renewals_) renewals_->setDue(place.renewalKey(), isFresh ? kept.document->fetched + fresh : now_());
    if (renewals_ && !isFresh) beginRenewal(place);
    if (renewals_ || isFresh) return kept.lines;
  }
  if (renewals_ && renewals_->isRunning(place.renewalKey()))
    return place.located(failure(FailureCode::unknown, "", "", "it is still being fetched"));
  auto lines = freshTimetable(place, kept);
  if (lines) {
    if (renewals_) renewals_->setDue(place.renewalKey(), now_() + kTimetableFresh);
    return lines;
  }
  if (renewals_ && failureCodeOf(lines.error()) == FailureCode::timedOut) {
    renewals_->setDue(place.renewalKey(), now_());
    beginRenewal(place);
  }
  if (!kept.lines || stop_.stop_requested() || requiresCurrentTimetables_) return lines;
  logError("%@; going on with the lines known before", {sentenceOf(lines.error())});
  return kept.lines;
}

Outcome<SharedLineIndex> FeedDocuments::freshTimetable(const Place& place, const KeptTimetable& kept) {
  Outcome<Fetched> fetched = fetchTimetable(place, kept.document);
  if (!fetched) return fetched.error();
  if (!fetched->isNew) return kept.lines;
  auto source = openZip(std::move(fetched->document.bytes));
  return readTimetable(place, std::move(source), std::move(fetched->document));
}

bool FeedDocuments::hasNewerLines(const StoredFeed& feed) {
  bool isAny = false;
  for (std::size_t index = 0; renewals_ && index < feed.gtfs.locations.size(); ++index) {
    const Place place{feed, Kind::kTimetable, index};
    beginRenewal(place);
    isAny = renewals_->takeNews(place.renewalKey()) || isAny;
  }
  return isAny;
}

void FeedDocuments::beginRenewal(const Place& place) {
  renewals_->beginIfDue(place.renewalKey(), now_(), [this, feed = place.feed, index = place.index] {
    return renew({feed, Kind::kTimetable, index, true});
  });
}

TimetableRenewals::Result FeedDocuments::renew(const Place& place) {
  const KeptTimetable kept = keptTimetable(place);
  const auto lines = freshTimetable(place, kept);
  if (lines) return {.isNew = *lines != kept.lines, .due = now_() + kTimetableFresh};
  if (!stop_.stop_requested())
    logError("%@; going on with the lines known before", {sentenceOf(lines.error())});
  return {.isNew = false, .due = now_() + kRenewalRetry};
}

Outcome<FeedDocuments::Fetched> FeedDocuments::fetchTimetable(const Place& place,
                                                              const std::optional<CachedDocument>& kept) {
  auto response =
      get(place, kept ? kept->etag.value_or("") : "", kept ? kept->lastModified.value_or("") : "");
  if (!response) return response.error();
  if (response->notModified) {
    if (keeps(place.feed)) cache_->confirm(place.feed.name, place.cacheKind(), now_(), {});
    return Fetched{*kept};
  }
  return Fetched{{.location = place.safeLocation(),
                  .fetched = now_(),
                  .etag = nonEmpty(std::move(response->etag)),
                  .lastModified = nonEmpty(std::move(response->lastModified)),
                  .bytes = std::move(response->body)},
                 true};
}

/// `document`: the cache entry to write, still without bytes.
Outcome<SharedLineIndex> FeedDocuments::readTimetable(const Place& place,
                                                      Outcome<std::unique_ptr<GtfsSource>> source,
                                                      CachedDocument document) {
  if (!source) return place.located(source.error());
  auto contents = readGtfs(**source, place.feed.name);
  if (!contents) return place.located(contents.error());
  const SharedLineIndex index = indexOf(std::move(*contents));
  if (stop_.stop_requested())
    return place.located(failure(FailureCode::cancelled, "", "", "it is no longer wanted"));
  if (keepsTimetable(place) || isHttpURL(place.location())) keepStops(place, **source);
  keepIndex(place, *index, std::move(document));
  return index;
}

bool FeedDocuments::keepsTimetable(const Place& place) const {
  return keeps(place.feed) && (isHttpURL(place.location()) || keepsLocalTimetables_);
}

/// An error goes to the log only, because lines without stop names are better than no lines.
void FeedDocuments::keepStops(const Place& place, GtfsSource& source) {
  if (!keepsTimetable(place)) {
    auto table = source.file(kStopsTable);
    const MutexLock lock(stopsMutex_);
    uncachedStops_.insert_or_assign(
        place.location(),
        UncachedStops{.table = table ? std::move(*table).value_or("") : "", .searches = {}});
    if (!table) place.logStopsError(table.error());
    return;
  }
  auto pages = readStopPages(source);
  if (!pages) place.logStopsError(pages.error());
  std::vector<CachedStopPage> kept;
  for (StopPage& page : pages ? *pages : std::vector<StopPage>())
    kept.push_back({std::move(page.firstId), std::move(page.text)});
  cache_->storeStops(place.feed.name, place.stopsKey(), std::move(kept));
}

std::shared_ptr<StopNames> FeedDocuments::stopNamesOf(const StoredFeed& feed,
                                                      const SharedAlertsMessage& alerts) {
  std::vector<StopNames::PageSource> sources;
  for (std::size_t index = 0; index < feed.gtfs.locations.size(); ++index) {
    sources.emplace_back([this, feed, index, alerts](std::string_view id) {
      return stopPage({feed, Kind::kTimetable, index}, id, alerts);
    });
  }
  return std::make_shared<StopNames>(std::move(sources));
}

std::optional<std::string> FeedDocuments::stopPage(const Place& place, std::string_view id,
                                                   const SharedAlertsMessage& alerts) {
  if (keeps(place.feed)) {
    if (auto page = cache_->stopPage(place.feed.name, place.stopsKey(), id)) return page;
  }
  const MutexLock lock(stopsMutex_);
  UncachedStops& stops = uncachedStops_[place.location()];
  const auto hasId = [id](const UncachedStops::Search& search) { return search.ids.contains(id); };
  auto search = std::ranges::find_if(stops.searches, hasId);
  if (search == stops.searches.end()) {
    StopIds ids = alerts && stops.searches.empty() ? stopIdsIn(*alerts) : StopIds();
    ids.emplace(id);
    auto pages = searchStops(place, ids, stops);
    search = stops.searches.insert(search, {std::move(ids), std::move(pages)});
  }
  const StopPage* const page = pageWithStop(search->pages, id);
  return page ? std::optional(page->text) : std::nullopt;
}

/// No stops after an error, which goes to the log.
std::vector<StopPage> FeedDocuments::searchStops(const Place& place, const StopIds& ids,
                                                 UncachedStops& stops) const {
  const auto found = [&]() -> Outcome<std::vector<StopPage>> {
    if (stops.table) {
      StopsTable table(*stops.table);
      return findStops(table, ids);
    }
    if (isHttpURL(place.location())) return std::vector<StopPage>();
    auto source = openTimetable(place.location());
    return source ? findStops(**source, ids) : source.error();
  }();
  if (!found) place.logStopsError(found.error());
  return found ? *found : std::vector<StopPage>();
}

Outcome<LineStops> FeedDocuments::lineStopsOf(const StoredFeed& feed, std::string_view routeId) {
  LineStops found;
  for (std::size_t index = 0; index < feed.gtfs.locations.size() && found.stops.empty(); ++index) {
    const Place place{feed, Kind::kTimetable, index};
    Bytes fetched;
    const bool isRemote = isHttpURL(place.location());
    if (isRemote) {
      auto response = get(place, "", "");
      if (!response) return response.error();
      fetched = std::move(response->body);
    }
    const auto source = isRemote ? openZip(std::move(fetched)) : openTimetable(place.location());
    if (!source) return place.located(source.error());
    auto stops = readLineStops(**source, routeId);
    if (!stops) return place.located(stops.error());
    found = *std::move(stops);
  }
  return found;
}

void FeedDocuments::keepIndex(const Place& place, const LineIndex& index, CachedDocument document) {
  if (!keepsTimetable(place)) return;
  document.bytes = encodeLineIndex(index.contents());
  cache_->store(place.feed.name, place.cacheKind(), std::move(document));
}

FeedAlerts FeedDocuments::alertsOf(const StoredFeed& feed, FeedAlerts held) {
  const std::size_t count = feed.alerts.locations.size();
  if (count == 0) {
    // No fetch failed, so there is nothing to retry.
    return {.failure = failure(FailureCode::unknown, feedCalled(feed), "",
                               "it has no alerts, so nothing is known of its lines")};
  }
  if (count == 1) return alerts({feed, Kind::kAlerts}, std::move(held));
  std::vector<FeedAlerts> parts = std::move(held.parts);
  parts.resize(count);
  const auto before = messagesOf(parts);
  runSideBySide(count, [&](std::size_t index) {
    parts[index] = alerts({feed, Kind::kAlerts, index}, std::move(parts[index]));
  });
  FeedAlerts all = together(std::move(parts));
  const auto messages = messagesOf(all.parts);
  if (!haveMessages(all.parts)) return all;
  if (held.message && messages == before) {
    all.message = held.message;
    return all;
  }
  auto merged = mergedAlerts(messages);
  if (!merged) return afterFailure(std::move(all), within(feedCalled(feed), merged.error()), now_());
  all.message = *std::move(merged);
  return all;
}

FeedAlerts FeedDocuments::alerts(const Place& place, FeedAlerts held) {
  return isHttpURL(place.location()) ? remoteAlerts(place, std::move(held))
                                     : localAlerts(place, std::move(held));
}

/// The file is read at each call. If it cannot be read, the earlier message is dropped.
FeedAlerts FeedDocuments::localAlerts(const Place& place, FeedAlerts held) {
  const auto failed = [&](const Error& error) {
    held.message = nullptr;
    return afterFailure(std::move(held), error, now_());
  };
  Outcome<Bytes> payload =
      bytesOf(localPath(place.location()),
              {.bytes = Kind::kAlerts.maximumBytes, .time = kFetchTimeout, .stop = stop_.get_token()});
  if (!payload) return failed(within(feedCalled(place.feed), payload.error()));
  auto message = update(place, held.message, *std::move(payload), now_());
  if (!message) return failed(message.error());
  return {.message = *std::move(message), .received = now_()};
}

FeedAlerts FeedDocuments::remoteAlerts(const Place& place, FeedAlerts held) {
  if (!held.message) held = cachedAlerts(place, std::move(held));
  const Date now = now_();
  if (held.message && !held.failure && isYoungerThan(held.freshFor, held.received, now)) return held;
  if (held.retryAfter && *held.failed <= now && now < *held.retryAfter) return held;
  auto response = get(place, held.etag, held.lastModified);
  if (!response) return afterFailure(std::move(held), response.error(), now_());
  auto alerts = afterResponse(place, held, *std::move(response));
  return alerts ? *std::move(alerts) : afterFailure(std::move(held), alerts.error(), now_());
}

/// The alerts in the cache; `held` if there are none or they cannot be read.
FeedAlerts FeedDocuments::cachedAlerts(const Place& place, FeedAlerts held) const {
  std::optional<CachedDocument> kept = find(place);
  if (!kept) return held;
  auto message = update(place, nullptr, std::move(kept->bytes), kept->fetched);
  if (!message) return held;
  held.message = *std::move(message);
  held.received = kept->fetched;
  held.etag = std::move(kept->etag).value_or("");
  held.lastModified = std::move(kept->lastModified).value_or("");
  held.freshFor = kept->freshFor.value_or(kAlertsFresh);
  return held;
}

Outcome<FeedAlerts> FeedDocuments::afterResponse(const Place& place, const FeedAlerts& held,
                                                 HttpResponse response) {
  FeedAlerts alerts{
      .received = now_(),
      .freshFor = std::clamp(response.maxAge.value_or(kAlertsFresh), kAlertsFresh, kLongestMaxAge)};
  if (response.notModified) {
    alerts.message = held.message;
    alerts.etag = held.etag;
    alerts.lastModified = held.lastModified;
    if (keeps(place.feed))
      cache_->confirm(place.feed.name, place.cacheKind(), alerts.received, alerts.freshFor);
    return alerts;
  }
  auto message = update(place, held.message, std::move(response.body), alerts.received);
  if (!message) return message.error();
  alerts.message = *std::move(message);
  alerts.etag = std::move(response.etag);
  alerts.lastModified = std::move(response.lastModified);
  keepAlerts(place, alerts);
  return alerts;
}

void FeedDocuments::keepAlerts(const Place& place, const FeedAlerts& alerts) {
  if (!keeps(place.feed)) return;
  cache_->store(place.feed.name, place.cacheKind(),
                {.location = place.safeLocation(),
                 .fetched = alerts.received,
                 .etag = nonEmpty(alerts.etag),
                 .lastModified = nonEmpty(alerts.lastModified),
                 .bytes = alerts.message->payload(),
                 .freshFor = alerts.freshFor});
}

/// The alerts after a new payload, which may list changes only.
Outcome<SharedAlertsMessage> FeedDocuments::update(const Place& place, const SharedAlertsMessage& held,
                                                   Bytes payload, Date received) const {
  auto message = readAlertsMessage(std::move(payload));
  if (message && !hasPlausibleTime(**message, received)) {
    logError(
        "feed %@: the time in the header of its alerts, %lu s since 1970, is in the future; the time of "
        "receipt counts",
        {place.feed.name, (*message)->timestamp()});
    message = withoutTime(**message);
  }
  if (message) message = updatedAlerts(held, *message);
  return message ? message : place.located(message.error());
}

}  // namespace linewatch

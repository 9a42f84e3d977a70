#include "feeds/feed_documents.h"

#include <cstdint>
#include <filesystem>
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

/// One of the two documents of a feed, and how the cache treats it.
struct FeedDocuments::Kind {
  const char* name;
  std::string StoredFeed::*location;
  /// For how long a kept document is taken without asking, and for how long when asking fails.
  Seconds fresh;
  Seconds usable;
  std::size_t maximumBytes;

  static const Kind kTimetable;
  static const Kind kAlerts;
};

namespace {

namespace fs = std::filesystem;
constexpr Seconds kForever{1e12};

std::string feedCalled(const StoredFeed& feed) { return "feed " + feed.name; }

/// What is wrong with that which lies at the location, of which `error` itself does not know.
Error located(const Error& error, const StoredFeed& feed, const std::string& location) {
  return failure(feedCalled(feed), redacted(location), sentenceOf(error));
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

// Changes whenever the files do.
std::string fingerprint(const std::string& location) {
  std::string print;
  const fs::path path = localPath(location);
  for (const fs::path& file : {path, path / "agency.txt", path / "feed_info.txt", path / "routes.txt"}) {
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

void reportGoingOn(const Error& error, Seconds age) {
  logError("%@; going on with what was fetched %lu s ago",
           {sentenceOf(error), static_cast<std::uint64_t>(age.count())});
}

std::string asText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
Bytes asBytes(const std::string& text) { return {text.begin(), text.end()}; }

}  // namespace

const FeedDocuments::Kind FeedDocuments::Kind::kTimetable = {"gtfs", &StoredFeed::gtfs, Seconds(86400),
                                                             kForever, 512 * kMebibyte};
const FeedDocuments::Kind FeedDocuments::Kind::kAlerts = {"alerts", &StoredFeed::alerts, Seconds(15),
                                                          Seconds(900), 64 * kMebibyte};

FeedDocuments::FeedDocuments(std::shared_ptr<FeedCache> cache, std::function<Date()> now,
                             FetcherSource fetcherSource)
    : cache_(std::move(cache)), now_(std::move(now)), fetcherSource_(std::move(fetcherSource)) {}

Outcome<SharedLineIndex> FeedDocuments::lineIndexOf(const StoredFeed& feed) {
  return isHttpURL(feed.gtfs) ? fetchTimetable(feed) : readLocalTimetable(feed);
}

Outcome<SharedAlertsMessage> FeedDocuments::alertsOf(const StoredFeed& feed,
                                                     const SharedAlertsMessage& held) {
  if (feed.alerts.empty())
    return failure(feedCalled(feed), "", "it has no alerts, so nothing is known of its lines");
  if (isHttpURL(feed.alerts)) return fetchAlerts(feed, held);
  Outcome<std::string> payload =
      contentsOf(localPath(feed.alerts),
                 {.bytes = Kind::kAlerts.maximumBytes, .time = kFetchTimeout, .stop = stop_.get_token()});
  if (!payload) return within(feedCalled(feed), payload.error());
  auto updated = updatedAlerts(held, std::move(*payload));
  if (!updated) return located(updated.error(), feed, feed.alerts);
  return updated;
}

std::optional<CachedDocument> FeedDocuments::find(const StoredFeed& feed, const Kind& kind) const {
  return keeps(feed) ? cache_->find(feed.name, kind.name, feed.*kind.location) : std::nullopt;
}

Outcome<SharedLineIndex> FeedDocuments::readLocalTimetable(const StoredFeed& feed) {
  const std::optional<CachedDocument> kept = find(feed, Kind::kTimetable);
  const std::string print = keeps(feed) ? fingerprint(feed.gtfs) : "";
  if (kept && kept->etag == print) {
    if (auto contents = decodeLineIndex(kept->bytes)) return indexOf(std::move(*contents));
  }
  return readTimetable(feed, openTimetable(feed.gtfs),
                       {.location = feed.gtfs, .fetched = now_(), .etag = print});
}

Outcome<SharedLineIndex> FeedDocuments::fetchTimetable(const StoredFeed& feed) {
  Outcome<Fetched> fetched = fetch(feed, Kind::kTimetable);
  if (!fetched) return fetched.error();
  if (!fetched->isNew) {
    auto contents = decodeLineIndex(fetched->document.bytes);
    if (contents) return indexOf(std::move(*contents));
    // Another version kept it in another form: have the whole timetable again.
    fetched = fetchAnew(feed, Kind::kTimetable, std::nullopt);
    if (!fetched) return fetched.error();
  }
  auto source = openZip(std::move(fetched->document.bytes));
  auto index = readTimetable(feed, std::move(source), std::move(fetched->document));
  if (index) return index;
  // As where a network answers with a page of its own: the lines known before serve as if it had not
  // answered.
  const std::optional<CachedDocument> kept = find(feed, Kind::kTimetable);
  if (!kept) return index;
  auto contents = decodeLineIndex(kept->bytes);
  if (!contents) return index;
  logError("%@; going on with the lines known before", {sentenceOf(index.error())});
  return indexOf(std::move(*contents));
}

/// `document` is what is to be kept of it, without the bytes.
Outcome<SharedLineIndex> FeedDocuments::readTimetable(const StoredFeed& feed,
                                                      Outcome<std::unique_ptr<GtfsSource>> source,
                                                      CachedDocument document) {
  if (!source) return located(source.error(), feed, feed.gtfs);
  auto contents = readGtfs(**source, feed.name);
  if (!contents) return located(contents.error(), feed, feed.gtfs);
  const SharedLineIndex index = indexOf(std::move(*contents));
  keepIndex(feed, *index, std::move(document));
  return index;
}

void FeedDocuments::keepIndex(const StoredFeed& feed, const LineIndex& index, CachedDocument document) {
  if (!keeps(feed) || (!isHttpURL(feed.gtfs) && !keepsLocalTimetables_)) return;
  document.bytes = encodeLineIndex(index.contents());
  cache_->store(feed.name, Kind::kTimetable.name, std::move(document));
}

Outcome<SharedAlertsMessage> FeedDocuments::fetchAlerts(const StoredFeed& feed,
                                                        const SharedAlertsMessage& held) {
  const std::optional<CachedDocument> kept = find(feed, Kind::kAlerts);
  SharedAlertsMessage before = held;
  if (kept && !before) {
    // What can no longer be read is as good as nothing kept.
    if (auto message = updatedAlerts(nullptr, asText(kept->bytes))) before = *message;
  }
  Outcome<Fetched> fetched = fetch(feed, Kind::kAlerts);
  if (!fetched) return fetched.error();
  if (!fetched->isNew) return before ? before : updatedAlerts(nullptr, asText(fetched->document.bytes));
  auto updated = updatedAlerts(before, asText(fetched->document.bytes));
  if (!updated) {
    const Error error = located(updated.error(), feed, feed.alerts);
    if (!before || ageOf(kept) >= Kind::kAlerts.usable) return error;
    reportGoingOn(error, ageOf(kept));
    return before;
  }
  if (keeps(feed)) {
    fetched->document.bytes = asBytes((*updated)->payload());
    cache_->store(feed.name, Kind::kAlerts.name, std::move(fetched->document));
  }
  return updated;
}

Outcome<FeedDocuments::Fetched> FeedDocuments::fetch(const StoredFeed& feed, const Kind& kind) {
  std::optional<CachedDocument> kept = find(feed, kind);
  const Seconds age = ageOf(kept);
  if (age < kind.fresh) return Fetched{std::move(*kept)};
  Outcome<Fetched> fetched = fetchAnew(feed, kind, kept);
  if (fetched || age >= kind.usable || stop_.stop_requested()) return fetched;
  reportGoingOn(fetched.error(), age);
  return Fetched{std::move(*kept)};
}

/// A document from the future says that the clock was set back: its age is not known.
Seconds FeedDocuments::ageOf(const std::optional<CachedDocument>& kept) const {
  return kept && kept->fetched <= now_() ? now_() - kept->fetched : kForever;
}

Outcome<FeedDocuments::Fetched> FeedDocuments::fetchAnew(const StoredFeed& feed, const Kind& kind,
                                                         const std::optional<CachedDocument>& kept) {
  const std::string& location = feed.*kind.location;
  auto fetcher = fetcherSource_();
  if (!fetcher) return fetcher.error();
  HttpRequest request{.url = location, .maximumBytes = kind.maximumBytes, .stop = stop_.get_token()};
  if (kept) {
    request.etag = kept->etag.value_or("");
    request.lastModified = kept->lastModified.value_or("");
  }
  auto response = (*fetcher)->fetch(request);
  if (!response) return located(response.error(), feed, location);
  if (!response->notModified) {
    return Fetched{{.location = location,
                    .fetched = now_(),
                    .etag = nonEmpty(std::move(response->etag)),
                    .lastModified = nonEmpty(std::move(response->lastModified)),
                    .bytes = std::move(response->body)},
                   true};
  }
  if (!kept)
    return located(failure("", "", "the server says that nothing changed, but was not asked whether"), feed,
                   location);
  if (keeps(feed)) cache_->confirm(feed.name, kind.name, now_());
  return Fetched{*kept};
}

}  // namespace linewatch

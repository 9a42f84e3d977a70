#include "feeds/catalogue/kept_catalogue.h"

#include <cstddef>
#include <utility>

#include "feeds/http/redacted.h"
#include "shared/byte_size.h"
#include "shared/failure.h"
#include "shared/file_contents.h"

namespace linewatch {

namespace {

constexpr std::size_t kLargestCatalogue = 32 * kMebibyte;
constexpr Seconds kCatalogueFresh{7.0 * 86400};
constexpr Seconds kCatalogueRetry{15.0 * 60};
constexpr Seconds kLongestCatalogueFetch{5.0 * 60};
constexpr Seconds kLongestSilence{10};

// No feed has an empty name, so its cache entry is the catalogue's.
constexpr const char* kCacheFeed = "";
constexpr const char* kCacheKind = "catalogue";

std::string_view textOf(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// False for a date in the future: the clock was set back.
bool isWithin(Seconds age, Date date, Date now) { return date <= now && now - date < age; }

std::optional<std::string> nonEmptyField(std::string field) {
  return field.empty() ? std::nullopt : std::optional(std::move(field));
}

}  // namespace

KeptCatalogue::KeptCatalogue(std::string location, std::shared_ptr<FeedCache> cache,
                             std::function<Date()> now, FeedDocuments::FetcherSource fetcherSource)
    : location_(std::move(location)),
      cache_(std::move(cache)),
      now_(std::move(now)),
      fetcherSource_(std::move(fetcherSource)) {}

Outcome<KeptCatalogue::Reading> KeptCatalogue::read(const std::stop_token& stop,
                                                    HttpRequest::Progress progress) {
  const MutexLock lock(mutex_);
  auto reading = isHttpURL(location_) ? readFetched(stop, std::move(progress)) : readFile(stop);
  if (reading) last_ = *reading;
  return reading;
}

/// The error with the address in front, without a key that the address may hold.
Error KeptCatalogue::located(const Error& error) const {
  return within("catalogue", within(redacted(location_), redacted(error, {})));
}

Outcome<KeptCatalogue::Reading> KeptCatalogue::readFile(const std::stop_token& stop) const {
  constexpr std::string_view kScheme = "file://";
  const std::string file = location_.starts_with(kScheme) ? location_.substr(kScheme.size()) : location_;
  const auto bytes = bytesOf(file, {.bytes = kLargestCatalogue, .time = kFetchTimeout, .stop = stop});
  if (!bytes) return within("catalogue", bytes.error());
  auto catalogue = readCatalogue(textOf(*bytes));
  if (!catalogue) return located(catalogue.error());
  return Reading{.catalogue = *std::move(catalogue), .fetched = {}, .failure = {}};
}

Outcome<KeptCatalogue::Reading> KeptCatalogue::readFetched(const std::stop_token& stop,
                                                           HttpRequest::Progress progress) {
  const Date now = now_();
  if (!last_) last_ = readCache();
  if (last_ && isWithin(last_->failure ? kCatalogueRetry : kCatalogueFresh,
                        last_->failure ? tried_ : *last_->fetched, now))
    return *last_;
  auto fetched = fetch(stop, std::move(progress));
  tried_ = now;
  if (fetched || !last_ || stop.stop_requested()) return fetched;
  Reading kept = *last_;
  kept.failure = fetched.error();
  return kept;
}

/// Absent when no catalogue of this location is kept.
std::optional<KeptCatalogue::Reading> KeptCatalogue::readCache() {
  auto kept = cache_ ? cache_->find(kCacheFeed, kCacheKind, redacted(location_)) : std::nullopt;
  auto catalogue = kept ? readCatalogue(textOf(kept->bytes)) : failure("", "", "");
  if (!catalogue) return std::nullopt;
  etag_ = std::move(kept->etag).value_or("");
  lastModified_ = std::move(kept->lastModified).value_or("");
  Reading reading{.catalogue = *std::move(catalogue), .fetched = kept->fetched, .failure = {}};
  // An earlier run may have tried in vain.
  if (const auto postponed = cache_->postponed(kCacheFeed, kCacheKind, redacted(location_))) {
    tried_ = postponed->failed;
    reading.failure = postponed->error;
  }
  return reading;
}

Outcome<KeptCatalogue::Reading> KeptCatalogue::fetch(const std::stop_token& stop,
                                                     HttpRequest::Progress progress) {
  const auto fetcher = fetcherSource_();
  if (!fetcher) return located(fetcher.error());
  auto response = (*fetcher)->fetch({.url = location_,
                                     .etag = last_ ? etag_ : "",
                                     .lastModified = last_ ? lastModified_ : "",
                                     .timeout = kLongestCatalogueFetch,
                                     .maximumBytes = kLargestCatalogue,
                                     .stop = stop,
                                     .idleTimeout = kLongestSilence,
                                     .progress = std::move(progress)});
  auto reading = response ? afterResponse(*std::move(response)) : response.error();
  if (reading) return reading;
  const Error error = located(reading.error());
  if (cache_ && !stop.stop_requested())
    cache_->postpone(kCacheFeed, kCacheKind,
                     {.location = redacted(location_),
                      .failed = now_(),
                      .retryAfter = now_() + kCatalogueRetry,
                      .error = error});
  return error;
}

Outcome<KeptCatalogue::Reading> KeptCatalogue::afterResponse(HttpResponse response) {
  const Date now = now_();
  if (response.notModified) {
    if (!last_) return failure(FailureCode::malformed, "", "", "the server sends no catalogue");
    if (cache_) cache_->confirm(kCacheFeed, kCacheKind, now, {});
    return Reading{.catalogue = last_->catalogue, .fetched = now, .failure = {}};
  }
  auto catalogue = readCatalogue(textOf(response.body));
  if (!catalogue) return catalogue.error();
  etag_ = response.etag;
  lastModified_ = response.lastModified;
  if (cache_)
    cache_->store(kCacheFeed, kCacheKind,
                  {.location = redacted(location_),
                   .fetched = now,
                   .etag = nonEmptyField(std::move(response.etag)),
                   .lastModified = nonEmptyField(std::move(response.lastModified)),
                   .bytes = std::move(response.body)});
  return Reading{.catalogue = *std::move(catalogue), .fetched = now, .failure = {}};
}

}  // namespace linewatch

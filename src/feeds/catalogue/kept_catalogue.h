#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "feeds/catalogue/catalogue.h"
#include "feeds/feed_documents.h"
#include "feeds/http/http_fetcher.h"
#include "shared/date.h"
#include "shared/error.h"
#include "shared/mutex.h"
#include "shared/outcome.h"
#include "storage/feed_cache.h"

namespace linewatch {

/// The spreadsheet of the Mobility Database, under CC0.
inline constexpr const char* kCatalogueUrl = "https://files.mobilitydatabase.org/feeds_v2.csv";

/// The catalogue at an http(s) address or in a file. A fetched one is kept in the cache, and asked for again
/// after a week with a conditional request. While the server cannot be reached, or sends something else, the
/// kept one serves. Does nothing until `read` is called. Any thread; calls wait for each other.
class KeptCatalogue {
 public:
  struct Reading {
    /// Never null.
    SharedCatalogue catalogue;
    /// When it came, or was confirmed; absent for a file.
    std::optional<Date> fetched;
    /// Why a newer one could not be had, one sentence; absent when this one is up to date.
    std::optional<Error> failure;
  };

  /// `location`: a URL or a file. Without a `cache` nothing outlives this object.
  KeptCatalogue(std::string location, std::shared_ptr<FeedCache> cache, std::function<Date()> now,
                FeedDocuments::FetcherSource fetcherSource = loadHttpFetcher);

  const std::string& location() const { return location_; }
  /// The catalogue. Blocks while it is fetched, if that is needed; a fetch ends when no byte comes for 10 s.
  /// Without a fetch the first call takes about 50 ms, and later ones no time. `stop` ends a fetch at once;
  /// the code is then `cancelled`. After a failed fetch the server is not asked again for 15 minutes, unless
  /// nothing is kept. `progress` is called on this thread; may be empty.
  Outcome<Reading> read(const std::stop_token& stop = {}, HttpRequest::Progress progress = {})
      LINEWATCH_EXCLUDES(mutex_);

 private:
  Error located(const Error& error) const;
  Outcome<Reading> readFile(const std::stop_token& stop) const;
  Outcome<Reading> readFetched(const std::stop_token& stop, HttpRequest::Progress progress)
      LINEWATCH_REQUIRES(mutex_);
  std::optional<Reading> readCache() LINEWATCH_REQUIRES(mutex_);
  Outcome<Reading> fetch(const std::stop_token& stop, HttpRequest::Progress progress)
      LINEWATCH_REQUIRES(mutex_);
  Outcome<Reading> afterResponse(HttpResponse response) LINEWATCH_REQUIRES(mutex_);

  const std::string location_;
  const std::shared_ptr<FeedCache> cache_;
  const std::function<Date()> now_;
  const FeedDocuments::FetcherSource fetcherSource_;
  Mutex mutex_;
  std::optional<Reading> last_ LINEWATCH_GUARDED_BY(mutex_);
  /// When the server was last asked.
  Date tried_ LINEWATCH_GUARDED_BY(mutex_){};
  /// The validators of `last_`.
  std::string etag_ LINEWATCH_GUARDED_BY(mutex_), lastModified_ LINEWATCH_GUARDED_BY(mutex_);
};

}  // namespace linewatch

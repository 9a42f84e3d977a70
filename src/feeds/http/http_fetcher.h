#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "shared/byte_size.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "shared/value.h"

namespace linewatch {

/// The time limit of one fetch.
inline constexpr Seconds kFetchTimeout{20};

struct NameAndValue {
  std::string name;
  std::string value;

  bool operator==(const NameAndValue&) const = default;
};

/// One GET.
struct HttpRequest {
  /// May hold a user name and a password, which are sent as basic authentication.
  std::string url;
  /// The validators that came with the copy in the cache. Empty: none. With either, the GET is conditional.
  std::string etag;
  std::string lastModified;
  /// For the whole exchange: name lookup, connection, redirects and body.
  Seconds timeout = kFetchTimeout;
  /// Limits the body, both as it is sent and unpacked.
  std::size_t maximumBytes = 64 * kMebibyte;
  /// Limit the lines before the body, those of interim answers included.
  std::size_t maximumHeaderBytes = std::size_t{64} << 10U;
  std::size_t maximumHeaderLines = 200;
  /// A requested stop, from any thread, ends the exchange with the code `cancelled`.
  std::stop_token stop = {};
  /// Keys that the server wants, as extra header lines and as parameters added to the URL's query. They go to
  /// the URL's own server alone, not to another one after a redirect, and no message shows their values.
  std::vector<NameAndValue> headers = {};
  std::vector<NameAndValue> query = {};
  /// Further texts that no message may show, e.g. the key within a header "Authorization: apikey KEY".
  std::vector<std::string> secrets = {};
};

struct HttpResponse {
  /// True: the copy in the cache is still current, and there is no body. Only for a conditional GET.
  bool notModified = false;
  /// Complete and unpacked.
  Bytes body;
  /// For the next conditional request; empty when the server gives none.
  std::string etag;
  std::string lastModified;
  /// For how long from now the server calls the answer fresh: max-age of Cache-Control less Age, at most 5
  /// minutes. Absent when the server does not say, or asks not to rely on it.
  std::optional<Seconds> maxAge = {};
};

/// The key of an error's info under which the server's Retry-After stands, as a double: the seconds from the
/// answer until the server wants to be asked again, at most a day. Statuses 429 and 503 have it.
inline constexpr const char* kRetryAfterKey = "retryAfter";
/// The key of an error's info under which the status of the server's answer stands, as an int64.
inline constexpr const char* kHttpStatusKey = "httpStatus";

/// The values under these keys; absent when the error has none.
std::optional<Seconds> retryAfterOf(const Error& error);
std::optional<int> httpStatusOf(const Error& error);

/// Fetches over http and https. Asks for gzip and unpacks it. Follows up to 10 redirects, to http and https
/// only and never from https to http.
class HttpFetcher {
 public:
  virtual ~HttpFetcher() = default;
  /// Blocks until the answer is complete or the fetch fails; then the connection is closed. Any thread,
  /// several at a time.
  ///
  /// The sentence of a failure says why, e.g. "it cannot be fetched: connection refused"; the caller adds
  /// which feed. The code is
  /// - `unreachable`: no such host, no connection, a connection that broke, an untrusted certificate, or a
  ///   server that cannot answer now (429 and 5xx),
  /// - `timedOut`, `cancelled`,
  /// - `refused`: the server wants a key or another one (401, 403), or gives the document to nobody (another
  ///   4xx),
  /// - `notFound`: 404 and 410,
  /// - `tooLarge`: the header or the body is over its limit,
  /// - `malformed`: no HTTP, damaged or incomplete gzip, redirects that lead nowhere,
  /// - `invalid`: the URL or a key cannot be sent.
  virtual Outcome<HttpResponse> fetch(const HttpRequest& request) = 0;
};

/// True for a URL that `fetch` can fetch, by its scheme.
bool isHttpURL(const std::string& location);

/// The fetcher over libcurl, which the first call loads.
Outcome<std::shared_ptr<HttpFetcher>> loadHttpFetcher();

}  // namespace linewatch

#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
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
/// The limit of a fetch that may go on as long as bytes come: the timetable of a country over a slow
/// connection.
inline constexpr Seconds kLongestFetch{30.0 * 60};

struct NameAndValue {
  std::string name;
  std::string value;

  bool operator==(const NameAndValue&) const = default;
};

/// One GET.
struct HttpRequest {
  /// How many bytes of the body have come over the network, and how many there are; the latter is absent when
  /// the server does not say.
  using Progress = std::function<void(std::uint64_t bytes, std::optional<std::uint64_t> total)>;

  /// May hold a user name and a password, which are sent as basic authentication.
  std::string url;
  /// The validators of the cached document; empty when there are none. With either, the GET is conditional.
  std::string etag;
  std::string lastModified;
  /// For the whole exchange: name lookup, connection, redirects and body.
  Seconds timeout = kFetchTimeout;
  /// Limits the size of the body, packed and unpacked.
  std::size_t maximumBytes = 64 * kMebibyte;
  /// Limit the header, interim answers included.
  std::size_t maximumHeaderBytes = std::size_t{64} << 10U;
  std::size_t maximumHeaderLines = 200;
  /// A requested stop, from any thread, ends the exchange with the code `cancelled`.
  std::stop_token stop = {};
  /// Keys, as header fields and as parameters that are added to the URL's query. They are sent to the URL's
  /// server only, never to another one after a redirect, and no message shows their values.
  std::vector<NameAndValue> headers = {};
  std::vector<NameAndValue> query = {};
  /// Other texts that no message may show, e.g. the key in a header "Authorization: apikey KEY".
  std::vector<std::string> secrets = {};
  /// The fetch ends when no byte comes for this long, also before `timeout`; absent: only `timeout` counts.
  std::optional<Seconds> idleTimeout = {};
  /// Called on the fetching thread at the start of the body and with each piece of it; may be empty.
  Progress progress = {};
};

struct HttpResponse {
  /// True: the cached document is still current, and there is no body. Only after a conditional GET.
  bool notModified = false;
  /// Complete and unpacked.
  Bytes body;
  /// For the next conditional request; empty when the server gives none.
  std::string etag;
  std::string lastModified;
  /// How long the answer is fresh from now on: max-age of Cache-Control less Age, at most 5 minutes. Absent
  /// without max-age, and with no-cache or no-store.
  std::optional<Seconds> maxAge = {};
};

/// The key of Retry-After in an error's info, a double: the seconds from the answer until the next request,
/// at most a day. Set for the statuses 429 and 503.
inline constexpr const char* kRetryAfterKey = "retryAfter";
/// The key of the HTTP status in an error's info, an int64.
inline constexpr const char* kHttpStatusKey = "httpStatus";

/// The values of these keys; absent when the error has none.
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
  /// - `refused`: the server wants a key or a different one (401, 403), or refuses the request (other 4xx),
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

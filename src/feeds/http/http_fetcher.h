#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "shared/byte_size.h"
#include "shared/date.h"
#include "shared/outcome.h"
#include "shared/value.h"

namespace linewatch {

/// How long a feed may take to come.
inline constexpr Seconds kFetchTimeout{20};

/// One GET. `etag` and `lastModified` are those of the copy that is held already; one that is not empty makes
/// the GET conditional.
struct HttpRequest {
  std::string url;
  std::string etag;
  std::string lastModified;
  /// For the whole exchange, so that a server that trickles or never ends cannot hold it open.
  Seconds timeout = kFetchTimeout;
  /// Of the body when unpacked.
  std::size_t maximumBytes = 64 * kMebibyte;
  /// Once a stop is requested, on any thread, the exchange ends with an error.
  std::stop_token stop = {};
};

struct HttpResponse {
  /// True: the held copy still stands, and there is no body.
  bool notModified = false;
  Bytes body;
  /// To be sent with the next request; empty when the server gives none.
  std::string etag;
  std::string lastModified;
  /// For how long the server calls the answer fresh (max-age of Cache-Control); absent when it does not say.
  std::optional<Seconds> maxAge = {};
};

/// The key of an error's info under which the server's Retry-After stands, as a double: the seconds from the
/// answer until the server wants to be asked again.
inline constexpr const char* kRetryAfterKey = "retryAfter";

/// Fetches over http and https; gzip is asked for and unpacked, redirects are followed unless they leave
/// https.
class HttpFetcher {
 public:
  virtual ~HttpFetcher() = default;
  /// Blocks until the answer is there. Any thread, several at a time. The error of a failure says why, e.g.
  /// that there is no such host, and leaves it to the caller to say of what.
  virtual Outcome<HttpResponse> fetch(const HttpRequest& request) = 0;
};

/// True for what `fetch` can fetch, by its scheme.
bool isHttpURL(const std::string& location);

/// The location as it may be printed: a password in a URL is nobody's business who reads an error.
std::string withoutPassword(std::string location);

/// The fetcher over Qt Network, loaded on first use.
Outcome<std::shared_ptr<HttpFetcher>> loadHttpFetcher();

}  // namespace linewatch

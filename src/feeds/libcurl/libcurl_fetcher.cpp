#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <curl/curl.h>

#include "feeds/http/http_fetcher.h"
#include "feeds/http/redacted.h"
#include "feeds/http/response_reader.h"
#include "feeds/libcurl/curl_transfer.h"
#include "feeds/libcurl/http_url.h"
#include "feeds/text/ascii.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr int kMaximumRedirects = 10;
/// A longer timeout could overflow the deadline.
constexpr Seconds kLongestTimeout{86400};

/// The texts that must not reach another server or a message.
std::vector<std::string> secretsOf(const HttpRequest& request) {
  std::vector<std::string> secrets = request.secrets;
  for (const auto* const keys : {&request.headers, &request.query}) {
    for (const NameAndValue& key : *keys) secrets.push_back(key.value);
  }
  // A user name without a password is a key itself.
  if (const auto url = HttpUrl::parse(request.url))
    secrets.push_back(url->password().empty() ? url->user() : url->password());
  return secrets;
}

bool isHeaderName(std::string_view name) {
  constexpr std::string_view kSigns = "!#$%&'*+-.^_`|~";
  return !name.empty() && std::ranges::all_of(name, [kSigns](char byte) {
    return isAsciiAlphanumeric(byte) || kSigns.find(byte) != std::string_view::npos;
  });
}

bool isHeaderValue(std::string_view value) {
  constexpr std::string_view kForbidden("\r\n\0", 3);
  return value.find_first_of(kForbidden) == std::string_view::npos;
}

bool canBeSent(const HttpRequest& request) {
  return isHeaderValue(request.etag) && isHeaderValue(request.lastModified) &&
         std::ranges::all_of(request.headers, [](const NameAndValue& header) {
           return isHeaderName(header.name) && isHeaderValue(header.value);
         });
}

Date systemTime() { return std::chrono::time_point_cast<Seconds>(std::chrono::system_clock::now()); }

/// One fetch with its redirects.
class CurlExchange {
 public:
  explicit CurlExchange(const HttpRequest& request)
      : request_(request),
        secrets_(secretsOf(request)),
        deadline_(CurlTransfer::Clock::now() + std::chrono::duration_cast<CurlTransfer::Clock::duration>(
                                                   std::min(request.timeout, kLongestTimeout))) {}

  Outcome<HttpResponse> run();

 private:
  HttpUrl withKeys(const HttpUrl& url) const;
  /// The URL that the redirect leads to, with the keys if it is on the same server. A redirect to another
  /// server sets `keys` to false; later redirects leave it so.
  Outcome<HttpUrl> redirected(const HttpUrl& from, const std::string& location, bool& keys) const;

  const HttpRequest& request_;
  std::vector<std::string> secrets_;
  CurlTransfer::Clock::time_point deadline_;
};

Outcome<HttpResponse> CurlExchange::run() {
  const auto first = HttpUrl::parse(request_.url);
  if (!first) return failure(FailureCode::invalid, "", "", "that is no address of a server");
  if (!canBeSent(request_))
    return failure(FailureCode::invalid, "", "", "a header of the request has no name or more than one line");
  bool keys = true;
  HttpUrl url = withKeys(first->withoutUser());
  for (int redirects = 0; redirects <= kMaximumRedirects; ++redirects) {
    ResponseReader reader(request_);
    CurlTransfer transfer({request_, url, keys, deadline_}, reader);
    if (const auto error = transfer.run()) return *error;
    if (!reader.header() || !isRedirect(*reader.header())) return reader.response(systemTime());
    auto next = redirected(url, reader.header()->location, keys);
    if (!next) return next.error();
    url = std::move(*next);
  }
  return failure(FailureCode::malformed, "", "",
                 "the server redirects more than " + std::to_string(kMaximumRedirects) + " times");
}

HttpUrl CurlExchange::withKeys(const HttpUrl& url) const {
  HttpUrl whole = url;
  for (const NameAndValue& parameter : request_.query) whole = whole.withQuery(parameter);
  return whole;
}

Outcome<HttpUrl> CurlExchange::redirected(const HttpUrl& from, const std::string& location,
                                          bool& keys) const {
  const auto target = from.resolve(location);
  if (!target)
    return failure(FailureCode::malformed, "", "",
                   "the server redirects to an address that is none of http or https");
  const HttpUrl to = target->withoutUser();
  if (from.isSecure() && !to.isSecure())
    return failure(FailureCode::malformed, "", "", "the server redirects from https to http");
  keys = keys && isSameServer(from, to);
  if (keys) return withKeys(to);
  if (holdsSecret(to.text(), secrets_))
    return failure(FailureCode::malformed, "", "",
                   "the server redirects to another one, " + to.host() + ", with the key");
  return to;
}

class LibcurlFetcher final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest& request) override {
    Outcome<HttpResponse> response = CurlExchange(request).run();
    if (response) return response;
    return redacted(within("it cannot be fetched", response.error()), secretsOf(request));
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) void linewatch_makeHttpFetcher(
    std::shared_ptr<HttpFetcher>& fetcher) {
  // Once, however many threads ask.
  static const CURLcode initialized = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (initialized == CURLE_OK) fetcher = std::make_shared<LibcurlFetcher>();
}

}  // namespace linewatch

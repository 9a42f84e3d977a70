#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <curl/curl.h>

#include "feeds/http/http_fetcher.h"

namespace linewatch {

/// An http or https URL with a host, as libcurl understands it.
class HttpUrl {
 public:
  /// Nullopt for any other text. Spaces and bytes beyond ASCII are percent-encoded.
  static std::optional<HttpUrl> parse(const std::string& text);
  HttpUrl(const HttpUrl& other);
  HttpUrl(HttpUrl&&) noexcept = default;
  HttpUrl& operator=(const HttpUrl& other);
  HttpUrl& operator=(HttpUrl&&) noexcept = default;
  ~HttpUrl() = default;

  /// The URL that a Location field refers to, relative to this one.
  std::optional<HttpUrl> resolve(const std::string& location) const;
  /// This URL with the parameter in its query. A parameter of that name in the URL stays as it is.
  HttpUrl withQuery(const NameAndValue& parameter) const;
  HttpUrl withoutUser() const;

  std::string text() const { return part(CURLUPART_URL, 0); }
  bool isSecure() const { return part(CURLUPART_SCHEME, 0) == "https"; }
  std::string host() const;
  /// The scheme's default port if the URL has none.
  std::string port() const { return part(CURLUPART_PORT, CURLU_DEFAULT_PORT); }
  /// Decoded; empty when the URL has none.
  std::string user() const { return part(CURLUPART_USER, CURLU_URLDECODE); }
  std::string password() const { return part(CURLUPART_PASSWORD, CURLU_URLDECODE); }

 private:
  struct Closer {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
  };
  using Handle = std::unique_ptr<CURLU, Closer>;

  explicit HttpUrl(Handle handle) : handle_(std::move(handle)) {}
  static std::optional<HttpUrl> withUrl(Handle handle, const std::string& text);
  std::string part(CURLUPart part, unsigned flags) const;

  Handle handle_;
};

/// True if keys for the first URL may go to the second: same scheme, host and port, or https on its usual
/// port instead of http.
bool isSameServer(const HttpUrl& first, const HttpUrl& second);

}  // namespace linewatch

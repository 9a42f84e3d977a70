#include "feeds/libcurl/http_url.h"

#include <algorithm>
#include <utility>

#include "feeds/text/ascii.h"

namespace linewatch {

std::optional<HttpUrl> HttpUrl::parse(const std::string& text) { return withUrl(Handle(curl_url()), text); }

HttpUrl::HttpUrl(const HttpUrl& other) : handle_(curl_url_dup(other.handle_.get())) {}

HttpUrl& HttpUrl::operator=(const HttpUrl& other) {
  handle_.reset(curl_url_dup(other.handle_.get()));
  return *this;
}

/// Sets the URL. A relative text is resolved against the URL that the handle has.
std::optional<HttpUrl> HttpUrl::withUrl(Handle handle, const std::string& text) {
  if (curl_url_set(handle.get(), CURLUPART_URL, text.c_str(), CURLU_URLENCODE) != CURLUE_OK)
    return std::nullopt;
  HttpUrl url(std::move(handle));
  const std::string scheme = url.part(CURLUPART_SCHEME, 0);
  if ((scheme != "http" && scheme != "https") || url.host().empty()) return std::nullopt;
  return url;
}

std::optional<HttpUrl> HttpUrl::resolve(const std::string& location) const {
  if (location.empty()) return std::nullopt;
  return withUrl(Handle(curl_url_dup(handle_.get())), location);
}

HttpUrl HttpUrl::withQuery(const NameAndValue& parameter) const {
  HttpUrl url = *this;
  const std::string query = "&" + part(CURLUPART_QUERY, 0);
  if (query.find("&" + parameter.name + "=") != std::string::npos) return url;
  curl_url_set(url.handle_.get(), CURLUPART_QUERY, (parameter.name + "=" + parameter.value).c_str(),
               CURLU_APPENDQUERY | CURLU_URLENCODE);
  return url;
}

HttpUrl HttpUrl::withoutUser() const {
  HttpUrl url = *this;
  curl_url_set(url.handle_.get(), CURLUPART_USER, nullptr, 0);
  curl_url_set(url.handle_.get(), CURLUPART_PASSWORD, nullptr, 0);
  return url;
}

std::string HttpUrl::host() const {
  std::string host = part(CURLUPART_HOST, 0);
  std::ranges::transform(host, host.begin(), asciiSmall);
  return host;
}

std::string HttpUrl::part(CURLUPart part, unsigned flags) const {
  char* text = nullptr;
  if (curl_url_get(handle_.get(), part, &text, flags) != CURLUE_OK) return {};
  std::string copy(text);
  curl_free(text);
  return copy;
}

bool isSameServer(const HttpUrl& first, const HttpUrl& second) {
  if (first.host() != second.host()) return false;
  if (first.isSecure() == second.isSecure()) return first.port() == second.port();
  return second.isSecure() && first.port() == "80" && second.port() == "443";
}

}  // namespace linewatch

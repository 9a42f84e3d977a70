#include "feeds/http/http_fetcher.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "feeds/text/ascii.h"
#include "shared/failure.h"
#include "shared/module.h"

namespace linewatch {

namespace {

template <class T>
const T* infoOf(const Error& error, const char* key) {
  const auto entry = error.info.find(key);
  return entry == error.info.end() ? nullptr : entry->second.get<T>();
}

}  // namespace

std::optional<Seconds> retryAfterOf(const Error& error) {
  const auto* const seconds = infoOf<double>(error, kRetryAfterKey);
  return seconds ? std::optional(Seconds(*seconds)) : std::nullopt;
}

std::optional<int> httpStatusOf(const Error& error) {
  const auto* const status = infoOf<std::int64_t>(error, kHttpStatusKey);
  return status ? std::optional(static_cast<int>(*status)) : std::nullopt;
}

bool isHttpURL(const std::string& location) {
  const auto startsWith = [&location](std::string_view scheme) {
    return std::ranges::equal(std::string_view(location).substr(0, scheme.size()), scheme, {}, asciiSmall);
  };
  return startsWith("http://") || startsWith("https://");
}

Outcome<std::shared_ptr<HttpFetcher>> loadHttpFetcher() {
  const Outcome<void*> entry = moduleEntry("libcurl", "linewatch_makeHttpFetcher");
  if (!entry) return entry.error();
  std::shared_ptr<HttpFetcher> fetcher;
  reinterpret_cast<void (*)(std::shared_ptr<HttpFetcher>&)> (*entry)(fetcher);
  if (!fetcher) return failure("cannot start a part of the program", "libcurl", "");
  return fetcher;
}

}  // namespace linewatch

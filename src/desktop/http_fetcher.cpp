#include "desktop/http_fetcher.h"

#include "desktop/module.h"

namespace linewatch::desktop {

bool isHttpURL(const std::string& location) {
  return location.starts_with("http://") || location.starts_with("https://");
}

Outcome<std::shared_ptr<HttpFetcher>> loadHttpFetcher() {
  const Outcome<void*> entry = moduleEntry("network", "linewatch_makeHttpFetcher");
  if (!entry) return entry.error();
  return std::shared_ptr<HttpFetcher>(reinterpret_cast<HttpFetcher* (*)()>(*entry)());
}

}  // namespace linewatch::desktop

#include "feeds/http/http_fetcher.h"

#include <algorithm>
#include <string_view>

#include "feeds/text/ascii.h"
#include "shared/module.h"

namespace linewatch {

bool isHttpURL(const std::string& location) {
  const auto startsWith = [&location](std::string_view scheme) {
    return std::ranges::equal(std::string_view(location).substr(0, scheme.size()), scheme, {}, asciiSmall);
  };
  return startsWith("http://") || startsWith("https://");
}

std::string withoutPassword(std::string location) {
  if (!isHttpURL(location)) return location;
  const std::size_t start = location.find("//") + 2;
  const std::size_t at = location.substr(0, location.find_first_of("/?#", start)).rfind('@');
  if (at != std::string::npos) location.erase(start, at + 1 - start);
  return location;
}

Outcome<std::shared_ptr<HttpFetcher>> loadHttpFetcher() {
  const Outcome<void*> entry = moduleEntry("network", "linewatch_makeHttpFetcher");
  if (!entry) return entry.error();
  std::shared_ptr<HttpFetcher> fetcher;
  reinterpret_cast<void (*)(std::shared_ptr<HttpFetcher>&)> (*entry)(fetcher);
  return fetcher;
}

}  // namespace linewatch

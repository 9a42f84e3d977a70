#include "feeds/gtfs/merged_lines.h"

#include <cstdint>
#include <set>
#include <string_view>
#include <utility>

namespace linewatch {

SharedLineIndex mergedLines(std::span<const SharedLineIndex> indexes) {
  if (indexes.size() == 1) return indexes.front();
  LineIndex::Contents all{
      .feedName = indexes.front()->feedName(), .language = {}, .agencies = {}, .routes = {}};
  std::set<std::string_view> ids;
  for (const SharedLineIndex& index : indexes) {
    if (all.language.empty()) all.language = index->language();
    const auto firstAgency = static_cast<std::uint32_t>(all.agencies.size());
    all.agencies.insert(all.agencies.end(), index->agencies().begin(), index->agencies().end());
    for (const FeedRoute& route : index->routes()) {
      if (!ids.insert(route.id).second) continue;
      all.routes.push_back(route);
      if (route.agency) all.routes.back().agency = *route.agency + firstAgency;
    }
  }
  return std::make_shared<const LineIndex>(std::move(all));
}

}  // namespace linewatch

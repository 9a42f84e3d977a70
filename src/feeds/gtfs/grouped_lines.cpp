#include "feeds/gtfs/grouped_lines.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <string>
#include <utility>

#include "feeds/gtfs/route_mode.h"
#include "feeds/text/folded_words.h"

namespace linewatch {

namespace {

constexpr std::array kModeOrder = {TransitMode::metro, TransitMode::rail,  TransitMode::tram,
                                   TransitMode::bus,   TransitMode::ferry, TransitMode::cable,
                                   TransitMode::air};

/// Modes that are not in the list come last.
std::size_t rankOfMode(TransitMode mode) {
  return static_cast<std::size_t>(std::ranges::find(kModeOrder, mode) - kModeOrder.begin());
}

void sortByName(const LineIndex& index, std::vector<std::size_t>& routes) {
  std::vector<std::pair<std::string, std::size_t>> named;
  named.reserve(routes.size());
  for (const std::size_t route : routes) named.emplace_back(comparableName(index.nameOfRoute(route)), route);
  std::ranges::stable_sort(named,
                           [](const auto& a, const auto& b) { return naturallyBefore(a.first, b.first); });
  std::ranges::transform(named, routes.begin(), [](const auto& each) { return each.second; });
}

void addGroups(const SharedLineIndex& index, std::vector<LineGroup>& groups) {
  constexpr std::uint32_t kNoAgency = std::numeric_limits<std::uint32_t>::max();
  std::map<std::pair<std::uint32_t, std::size_t>, LineGroup> sorted;
  for (std::size_t route = 0; route < index->routes().size(); ++route) {
    const FeedRoute& entry = index->routes()[route];
    const TransitMode mode = modeOfRouteType(entry.type);
    LineGroup& group = sorted[{entry.agency.value_or(kNoAgency), rankOfMode(mode)}];
    if (group.routes.empty()) group = {index, entry.agency, mode, {}};
    group.routes.push_back(route);
  }
  for (auto& [key, group] : sorted) {
    sortByName(*index, group.routes);
    groups.push_back(std::move(group));
  }
}

}  // namespace

std::vector<LineGroup> groupedLines(std::span<const SharedLineIndex> indexes) {
  std::vector<LineGroup> groups;
  for (const SharedLineIndex& index : indexes) addGroups(index, groups);
  return groups;
}

}  // namespace linewatch

#include "feeds/alerts/incident_stops.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "feeds/text/single_line.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

/// Empty when the stop is not part of a station.
std::string_view stationOf(const IncidentSources& sources, std::string_view stopId) {
  if (!sources.stops) return {};
  const auto& stop = sources.stops->find(stopId);
  return stop ? std::string_view(stop->station) : std::string_view();
}

}  // namespace

std::string nameOfStop(const IncidentSources& sources, std::string_view stopId) {
  if (!sources.stops) return {};
  const auto& stop = sources.stops->find(stopId);
  return stop ? stop->name : std::string();
}

StopNameList namesOfStops(const IncidentSources& sources, std::span<const std::string_view> stopIds) {
  StopNameList list;
  std::unordered_set<std::string> known;
  for (const std::string_view id : stopIds) {
    std::string name = nameOfStop(sources, id);
    if (name.empty()) {
      list.areAllKnown = false;
      name = filledIn(sources.language->texts.stopWithIdFormat, shownStopId(id));
    }
    if (known.insert(name).second) list.names.push_back(std::move(name));
  }
  return list;
}

std::vector<std::string_view> stopIdsOf(const IncidentSources& sources, std::uint32_t incident) {
  const AlertsMessage& message = sources.table->message();
  std::vector<std::string_view> ids;
  for (const std::uint32_t entity : sources.table->entitiesOf(incident)) {
    for (const AlertSelector& selector : message.selectors(message.entities()[entity])) {
      if (selector.namesStop()) ids.push_back(selector.stopId);
    }
  }
  std::ranges::sort(ids);
  // Clang 14 cannot compile std::ranges::unique of this standard library.
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

bool isChosenStop(const IncidentSources& sources, std::string_view stopId, const LineChoice& choice) {
  if (choice.stops == LineChoice::Stops::all) return true;
  return std::ranges::any_of(choice.stopIds, [&](const std::string& chosen) {
    return chosen == stopId || chosen == stationOf(sources, stopId) || stationOf(sources, chosen) == stopId;
  });
}

std::string shownStopId(std::string_view stopId) { return singleLine(withValidUtf8(std::string(stopId))); }

}  // namespace linewatch

#include "feeds/gtfs/line_stops.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "feeds/gtfs/csv_table.h"
#include "feeds/gtfs/stop_names.h"
#include "feeds/text/single_line.h"
#include "feeds/text/utf8.h"

namespace linewatch {

namespace {

/// More kinds of trips than this would take long and show nothing new.
constexpr std::size_t kMostKinds = 60;

/// Hands the rows of a table to `take` in pieces that are tables with the same header. The tables have no
/// line ends inside of values, or lose these rows.
std::optional<Error> readInPieces(GtfsSource& source, std::string_view name,
                                  const std::function<void(CsvTable&)>& take) {
  std::string header, rest;
  const auto takeRows = [&](std::size_t end) {
    const std::string text = withValidUtf8(header + rest.substr(0, end));
    rest.erase(0, end);
    CsvTable table(text);
    take(table);
  };
  const auto isThere = source.read(name, [&](std::string_view piece) {
    rest += piece;
    if (header.empty()) {
      const std::size_t end = rest.find('\n') + 1;
      header = rest.substr(0, end);
      rest.erase(0, end);
    }
    const std::size_t end = rest.rfind('\n') + 1;
    if (!header.empty() && end > 0) takeRows(end);
    return true;
  });
  if (!isThere) return isThere.error();
  if (!rest.empty() && !header.empty()) takeRows(rest.size());
  return std::nullopt;
}

/// Trips in one direction to one destination.
struct TripKind {
  std::optional<std::size_t> direction;
  std::string destination;
  std::size_t count = 0;
};

struct Trips {
  /// One trip of each kind, by its id.
  std::map<std::string, TripKind, std::less<>> examples;
};

Outcome<Trips> readTrips(GtfsSource& source, std::string_view routeId) {
  std::map<std::pair<std::string, std::string>, std::string> known;
  Trips trips;
  const auto error = readInPieces(source, "trips.txt", [&](CsvTable& table) {
    const auto route = table.column("route_id"), id = table.column("trip_id"),
               direction = table.column("direction_id"), destination = table.column("trip_headsign");
    while (table.next()) {
      if (table.value(route) != routeId) continue;
      const std::string way(table.value(direction));
      const auto key = std::pair(way, singleLine(table.value(destination)));
      const auto example = known.find(key);
      if (example != known.end()) {
        ++trips.examples.find(example->second)->second.count;
      } else if (known.size() < kMostKinds) {
        const bool isKnown = way == "0" || way == "1";
        known[key] = std::string(table.value(id));
        trips.examples[known[key]] = {isKnown ? std::optional<std::size_t>(way == "1") : std::nullopt,
                                      key.second, 1};
      }
    }
  });
  return error ? Outcome<Trips>(*error) : trips;
}

/// The ids of the stops of a trip, by their place in it.
using Calls = std::map<std::uint32_t, std::string>;

Outcome<std::map<std::string, Calls, std::less<>>> readCalls(GtfsSource& source, const Trips& trips) {
  std::map<std::string, Calls, std::less<>> calls;
  const auto error = readInPieces(source, "stop_times.txt", [&](CsvTable& table) {
    const auto trip = table.column("trip_id"), stop = table.column("stop_id"),
               place = table.column("stop_sequence");
    while (table.next()) {
      const auto example = trips.examples.find(table.value(trip));
      if (example == trips.examples.end()) continue;
      const std::string_view number = table.value(place);
      std::uint32_t sequence = 0;
      std::from_chars(number.data(), number.data() + number.size(), sequence);
      calls[example->first].insert_or_assign(sequence, std::string(table.value(stop)));
    }
  });
  if (error) return *error;
  return calls;
}

struct NamedStop {
  std::string name, station;
};

Outcome<std::map<std::string, NamedStop, std::less<>>> readNames(GtfsSource& source,
                                                                 const std::set<std::string>& ids) {
  std::map<std::string, NamedStop, std::less<>> names;
  const auto error = readInPieces(source, kStopsTable, [&](CsvTable& table) {
    const auto id = table.column("stop_id"), name = table.column("stop_name"),
               station = table.column("parent_station");
    while (table.next()) {
      std::string stop(table.value(id));
      if (!ids.contains(stop)) continue;
      names[std::move(stop)] = {singleLine(table.value(name)), std::string(table.value(station))};
    }
  });
  if (error) return *error;
  return names;
}

void addStop(const std::string& id, const NamedStop& named, std::vector<LineStops::Stop>& stops) {
  const std::string& name = named.name.empty() ? id : named.name;
  const std::string& chosen = named.station.empty() ? id : named.station;
  auto stop = std::ranges::find(stops, name, &LineStops::Stop::name);
  if (stop == stops.end()) stop = stops.insert(stops.end(), {{}, name});
  if (std::ranges::find(stop->ids, chosen) == stop->ids.end()) stop->ids.push_back(chosen);
}

}  // namespace

Outcome<LineStops> readLineStops(GtfsSource& source, std::string_view routeId) {
  const auto trips = readTrips(source, routeId);
  if (!trips) return trips.error();
  const auto calls = readCalls(source, *trips);
  if (!calls) return calls.error();
  std::set<std::string> ids;
  for (const auto& [trip, stops] : *calls) {
    for (const auto& [place, stop] : stops) ids.insert(stop);
  }
  auto names = readNames(source, ids);
  if (!names) return names.error();

  LineStops line;
  std::vector<const Calls*> longestFirst;
  for (const auto& [trip, stops] : *calls) longestFirst.push_back(&stops);
  std::ranges::stable_sort(longestFirst, std::greater(), &Calls::size);
  for (const Calls* const stops : longestFirst) {
    for (const auto& [place, stop] : *stops) addStop(stop, (*names)[stop], line.stops);
  }
  std::vector<TripKind> kinds;
  for (const auto& [trip, kind] : trips->examples) {
    kinds.push_back(kind);
    // Without a headsign the last stop names the destination.
    const auto stops = calls->find(trip);
    if (kind.destination.empty() && stops != calls->end() && !stops->second.empty())
      kinds.back().destination = (*names)[stops->second.rbegin()->second].name;
  }
  std::ranges::stable_sort(kinds, std::greater(), &TripKind::count);
  for (const TripKind& kind : kinds) {
    if (!kind.direction || kind.destination.empty()) continue;
    std::vector<std::string>& destinations = line.destinations[*kind.direction];
    if (std::ranges::find(destinations, kind.destination) == destinations.end())
      destinations.push_back(kind.destination);
  }
  return line;
}

}  // namespace linewatch

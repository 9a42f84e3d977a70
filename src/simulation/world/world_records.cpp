#include "simulation/world/world_records.h"

#include <optional>
#include <utility>

#include "platform/transit_storage_incident.h"

namespace linewatch::simulation {

namespace {

template <class Record>
using Records = std::unordered_map<std::string, std::shared_ptr<const Record>>;

/// Null when there is no such key.
template <class Record>
std::shared_ptr<const Record> recordFor(const Records<Record>& records, const std::string& key) {
  const auto entry = records.find(key);
  return entry == records.end() ? nullptr : entry->second;
}

SharedArtwork sharedArtwork(const std::optional<TransitArtworkDataSource>& artwork) {
  return artwork ? std::make_shared<const TransitArtworkDataSource>(*artwork) : nullptr;
}

std::shared_ptr<const TransitSystem> systemRecord(const WorldSystem& system) {
  return std::make_shared<const TransitSystem>(
      TransitSystem{system.muid, system.name, sharedArtwork(system.artwork)});
}

std::shared_ptr<const TransitIncident> incidentRecord(const WorldIncident& incident, Date start) {
  const auto date = [start](const std::optional<Seconds>& offset) {
    return offset ? std::optional<Date>(start + *offset) : std::nullopt;
  };
  return std::make_shared<const TransitStorageIncident>(TransitIncidentFields{
      .muid = incident.muid,
      .isBlockingIncident = incident.blocking,
      .startDate = date(incident.start),
      .endDate = date(incident.end),
      .title = incident.title,
      .summary = incident.secondaryText,
      .fullDescription = incident.fullDescription,
      .messageForRoutePlanning = incident.messageForRoutePlanning,
      .messageForRouteStepping = incident.messageForRouteStepping,
      .messageForNonRoutable = incident.messageForNonRoutable,
      .infoURL = incident.infoURL,
      .iconType = incident.iconType,
      .creationDate = date(incident.created),
      .lastUpdated = date(incident.lastUpdated),
      .affectedEntities = incident.affectedEntities,
  });
}

TransitLineFields lineFields(const WorldLine& line, const Records<TransitSystem>& systems) {
  return {
      .muid = line.muid,
      .identifier = line.identifier ? std::optional(MapItemIdentifier{line.muid}) : std::nullopt,
      .name = line.name,
      .system = line.system ? recordFor(systems, *line.system) : nullptr,
      .departureTimeDisplayStyle = line.departureTimeDisplayStyle,
      .departuresAreVehicleSpecific = line.departuresAreVehicleSpecific,
      .artwork = sharedArtwork(line.artwork),
      .modeArtwork = sharedArtwork(line.modeArtwork),
      .alternateArtwork = sharedArtwork(line.alternateArtwork),
      .lineColorString = line.lineColorString,
      .showVehicleNumber = line.showVehicleNumber,
      .operatingHours = line.operatingHours,
  };
}

TransitIncidents incidentsOf(const WorldLine& line, const Records<TransitIncident>& records) {
  TransitIncidents incidents;
  incidents.reserve(line.incidents.size());
  for (const std::string& key : line.incidents) {
    if (auto incident = recordFor(records, key)) incidents.push_back(std::move(incident));
  }
  return incidents;
}

Favorite favoriteRecord(const WorldFavorite& favorite, const Records<TransitLine>& lines) {
  switch (favorite.kind) {
    case WorldFavorite::Kind::place:
      return FavoritePlace{favorite.name};
    case WorldFavorite::Kind::route:
      return FavoriteRoute{favorite.name};
    case WorldFavorite::Kind::region:
      return FavoriteRegion{favorite.name};
    case WorldFavorite::Kind::line:
      break;
  }
  return FavoriteTransitLine{favorite.line ? recordFor(lines, *favorite.line) : nullptr};
}

}  // namespace

WorldRecords::WorldRecords(const World& world) {
  Records<TransitSystem> systems;
  for (const auto& [key, system] : world.systems) systems.emplace(key, systemRecord(system));
  Records<TransitIncident> incidents;
  for (const auto& [key, incident] : world.incidents) {
    incidents.emplace(key, incidentRecord(incident, world.start));
  }
  Records<TransitLine> savedLines;
  for (const auto& [key, line] : world.lines) {
    auto fields = std::make_shared<const TransitLineFields>(lineFields(line, systems));
    lines_.push_back(std::make_shared<const TransitLineRecord>(fields, incidentsOf(line, incidents)));
    linesByKey_.emplace(key, lines_.back());
    if (line.identifier) linesByIdentifier_.try_emplace(line.muid, lines_.back());
    // A favourite holds the line without its incidents.
    savedLines.emplace(key, std::make_shared<const TransitLineRecord>(std::move(fields), TransitIncidents{}));
  }
  for (const WorldFavorite& favorite : world.favorites) {
    favorites_.push_back(favoriteRecord(favorite, savedLines));
  }
}

TransitLineItems WorldRecords::linesFor(const std::vector<MapItemIdentifier>& identifiers) const {
  TransitLineItems items;
  items.reserve(identifiers.size());
  for (const MapItemIdentifier& identifier : identifiers) {
    const auto line = linesByIdentifier_.find(identifier.muid);
    if (line != linesByIdentifier_.end()) items.push_back(line->second);
  }
  return items;
}

TransitLineItems WorldRecords::linesNamed(const std::vector<std::string>& keys) const {
  TransitLineItems items;
  items.reserve(keys.size());
  for (const std::string& key : keys) {
    if (auto line = recordFor(linesByKey_, key)) items.push_back(std::move(line));
  }
  return items;
}

}  // namespace linewatch::simulation

#include "simulation/recording/recorded_answer.h"

#include <utility>
#include <variant>

#include "simulation/scenario/scenario_writing.h"
#include "simulation/world/world.h"
#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

WorldFavorite favoriteOf(const Favorite& favorite) {
  struct Visitor {
    WorldFavorite operator()(const FavoriteTransitLine&) const { return {}; }
    WorldFavorite operator()(const FavoritePlace& place) const {
      return {WorldFavorite::Kind::place, std::nullopt, place.name};
    }
    WorldFavorite operator()(const FavoriteRoute& route) const {
      return {WorldFavorite::Kind::route, std::nullopt, route.name};
    }
    WorldFavorite operator()(const FavoriteRegion& region) const {
      return {WorldFavorite::Kind::region, std::nullopt, region.name};
    }
  };
  return std::visit(Visitor{}, favorite);
}

/// The info may name addresses and files.
Error withoutInfo(const Error& error) { return {error.domain, error.code, {}}; }

}  // namespace

std::shared_ptr<const RecordedAnswer> RecordedRecords::answer(const TransitLineItems* items,
                                                              const std::optional<Error>& error,
                                                              std::size_t room) {
  auto answer = std::make_shared<RecordedAnswer>();
  if (error) answer->error = withoutInfo(*error);
  if (!items) return answer;
  const std::size_t limit = bytes() + room;
  answer->lines.emplace();
  for (const SharedLineItem& item : *items) {
    RecordedAnswer::Line line{lineEntry(*item), {}};
    for (const SharedIncident& incident : item->incidents()) {
      if (bytes() > limit) return nullptr;
      line.incidents.push_back(incidentEntry(*incident));
    }
    answer->lines->push_back(std::move(line));
  }
  return answer;
}

RecordedFavorites RecordedRecords::favorites(const Outcome<Favorites>& favorites) {
  RecordedFavorites recorded;
  if (!favorites) {
    recorded.error = withoutInfo(favorites.error());
    return recorded;
  }
  for (const Favorite& favorite : *favorites) {
    WorldFavorite form = favoriteOf(favorite);
    const auto* saved = std::get_if<FavoriteTransitLine>(&favorite);
    if (saved && saved->transitLine) {
      recorded.lines.push_back(lineEntry(*saved->transitLine));
      form.line = recorded.lines.back()->key;
    }
    recorded.texts.push_back(jsonText(written(form)));
  }
  return recorded;
}

SharedEntry RecordedRecords::systemEntry(const std::shared_ptr<const TransitSystem>& system) {
  if (!system) return nullptr;
  return systems_.entry(written(WorldSystem{system->muid, system->name, drawnArtwork(system->artwork)}),
                        system->name);
}

SharedEntry RecordedRecords::lineEntry(const TransitLine& line) {
  const SharedEntry system = systemEntry(line.system());
  WorldLine form{.muid = line.muid(),
                 .name = line.name(),
                 .system = system ? std::optional(system->key) : std::nullopt,
                 .artwork = drawnArtwork(line.artwork()),
                 .modeArtwork = drawnArtwork(line.modeArtwork()),
                 .alternateArtwork = drawnArtwork(line.alternateArtwork()),
                 .incidents = {},
                 .identifier = line.identifier().has_value(),
                 .departureTimeDisplayStyle = line.departureTimeDisplayStyle(),
                 .departuresAreVehicleSpecific = line.departuresAreVehicleSpecific(),
                 .lineColorString = line.lineColorString(),
                 .showVehicleNumber = line.showVehicleNumber(),
                 .operatingHours = line.operatingHours()};
  return lines_.entry(written(form), line.name(), system);
}

SharedEntry RecordedRecords::incidentEntry(const TransitIncident& incident) {
  const auto offset = [this](const std::optional<Date>& date) {
    return date ? std::optional<Seconds>(*date - start_) : std::nullopt;
  };
  const WorldIncident form{.muid = incident.muid(),
                           .title = incident.title(),
                           .secondaryText = incident.summary(),
                           .start = offset(incident.startDate()),
                           .end = offset(incident.endDate()),
                           .blocking = incident.isBlockingIncident(),
                           .fullDescription = incident.fullDescription(),
                           .messageForRoutePlanning = incident.messageForRoutePlanning(),
                           .messageForRouteStepping = incident.messageForRouteStepping(),
                           .messageForNonRoutable = incident.messageForNonRoutable(),
                           .infoURL = incident.infoURL(),
                           .iconType = incident.iconType(),
                           .created = offset(incident.creationDate()),
                           .lastUpdated = offset(incident.lastUpdated()),
                           .affectedEntities = incident.affectedEntities()};
  return incidents_.entry(written(form), {});
}

/// The artwork with the width at which it is drawn, which another machine's fonts would change.
std::optional<TransitArtworkDataSource> RecordedRecords::drawnArtwork(const SharedArtwork& artwork) {
  if (!artwork) return std::nullopt;
  TransitArtworkDataSource drawn = *artwork;
  if (!drawn.intrinsicWidth) drawn.intrinsicWidth = widthOf_(*artwork);
  return drawn;
}

}  // namespace linewatch::simulation

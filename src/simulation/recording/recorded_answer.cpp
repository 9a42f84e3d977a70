#include "simulation/recording/recorded_answer.h"

#include <unordered_map>
#include <utility>
#include <variant>

#include "list/list_dictionary_form.h"
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
  // Many lines may share an incident.
  std::unordered_map<const TransitIncident*, SharedEntry> known;
  for (const SharedLineItem& item : *items) {
    RecordedAnswer::Line line{lineEntry(*item), {}};
    for (const SharedIncident& incident : item->incidents()) {
      SharedEntry& entry = known[incident.get()];
      if (!entry) entry = incidentEntry(*incident);
      line.incidents.push_back(entry);
      if (bytes() > limit) return nullptr;
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
  std::vector<SharedEntry> needed;
  const WorldSystem form{system->muid, system->name, artworkForm(system->artwork, needed)};
  return systems_.entry(written(form), system->name, std::move(needed));
}

SharedEntry RecordedRecords::lineEntry(const TransitLine& line) {
  std::vector<SharedEntry> needed;
  const SharedEntry system = systemEntry(line.system());
  if (system) needed.push_back(system);
  const WorldLine form{.muid = line.muid(),
                       .name = line.name(),
                       .system = system ? std::optional(system->key) : std::nullopt,
                       .artwork = artworkForm(line.artwork(), needed),
                       .modeArtwork = artworkForm(line.modeArtwork(), needed),
                       .alternateArtwork = artworkForm(line.alternateArtwork(), needed),
                       .incidents = {},
                       .identifier = line.identifier().has_value(),
                       .departureTimeDisplayStyle = line.departureTimeDisplayStyle(),
                       .departuresAreVehicleSpecific = line.departuresAreVehicleSpecific(),
                       .lineColorString = line.lineColorString(),
                       .showVehicleNumber = line.showVehicleNumber(),
                       .operatingHours = line.operatingHours()};
  return lines_.entry(written(form), line.name(), std::move(needed));
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

/// Adds the widths at which the artwork's parts are drawn, which another machine's fonts would change.
std::optional<TransitArtworkDataSource> RecordedRecords::artworkForm(const SharedArtwork& artwork,
                                                                     std::vector<SharedEntry>& widths) {
  if (!artwork) return std::nullopt;
  if (artwork->intrinsicWidth) return *artwork;
  for (const auto& shield : {artwork->shieldDataSource, artwork->iconFallbackShieldDataSource}) {
    if (shield)
      addWidth({.artworkSourceType = kArtworkSourceShield,
                .shieldDataSource = ShieldDataSource{shield->shieldType, shield->shieldText, {}, {}}},
               widths);
  }
  if (artwork->iconDataSource)
    addWidth({.artworkSourceType = kArtworkSourceIcon, .iconDataSource = artwork->iconDataSource}, widths);
  return *artwork;
}

void RecordedRecords::addWidth(TransitArtworkDataSource part, std::vector<SharedEntry>& widths) {
  part.intrinsicWidth = widthOf_(part);
  if (!part.intrinsicWidth) return;
  const std::string name = part.shieldDataSource ? part.shieldDataSource->shieldText.value_or("") : "";
  widths.push_back(widths_.entry(dictionaryForm(part), name));
}

}  // namespace linewatch::simulation

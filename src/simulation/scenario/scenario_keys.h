#pragma once

#include <array>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "platform/transit_record_fields.h"
#include "simulation/scenario/scenario_reading.h"
#include "simulation/scenario/scenario_world.h"
#include "simulation/world/world.h"
#include "wire/message_field.h"

/// The keys of a world in JSON, which the reader and the writer share. For their source files.
namespace linewatch::simulation {

namespace detail {

inline const char* notNegative(const std::optional<Seconds>& seconds) {
  return seconds && *seconds < Seconds(0) ? "must not be negative" : nullptr;
}

inline const char* positive(const double& number) { return number > 0 ? nullptr : "must be more than 0"; }

// Keys of an artwork. The keys of its shield and icon stand beside its own in the JSON object; each adds the
// shield or icon when the artwork has none yet.

using Artwork = TransitArtworkDataSource;

template <class Part, class Fields>
constexpr auto keysOfFields(const Fields& fields) {
  return std::apply(
      [](const auto&... field) {
        return std::tuple{key<Part>(
            field.name,
            [](Part & part) -> auto& { return std::remove_cvref_t<decltype(field)>::in(part); })...};
      },
      fields);
}

template <class Part, std::optional<Part> Artwork::*kPart>
constexpr auto keysOfPart() {
  return std::apply(
      [](const auto&... field) {
        return std::tuple{key<Artwork>(
            field.name, [](Artwork & artwork) -> auto& {
              auto& part = artwork.*kPart;
              return std::remove_cvref_t<decltype(field)>::in(part ? *part : part.emplace());
            })...};
      },
      FieldTable<Part>::fields);
}

}  // namespace detail

template <>
struct Names<LayoutDirection> {
  static constexpr std::array table = {std::pair{"ltr", LayoutDirection::leftToRight},
                                       std::pair{"rtl", LayoutDirection::rightToLeft}};
};
template <>
struct Names<WorldFavorite::Kind> {
  static constexpr std::array table = {
      std::pair{"line", WorldFavorite::Kind::line}, std::pair{"place", WorldFavorite::Kind::place},
      std::pair{"route", WorldFavorite::Kind::route}, std::pair{"region", WorldFavorite::Kind::region}};
};
template <>
struct Names<WorldService::Answer> {
  static constexpr std::array table = {
      std::pair{"lines", WorldService::Answer::lines}, std::pair{"error", WorldService::Answer::error},
      std::pair{"nothing", WorldService::Answer::nothing}, std::pair{"all", WorldService::Answer::all}};
};
template <>
struct Names<WorldBundle> {
  static constexpr std::array table = {
      std::pair{"plugin", WorldBundle::plugin}, std::pair{"application", WorldBundle::application},
      std::pair{"other", WorldBundle::other}, std::pair{"none", WorldBundle::none}};
};

template <>
struct Keys<ShieldDataSource> {
  static constexpr auto table = detail::keysOfFields<ShieldDataSource>(FieldTable<ShieldDataSource>::fields);
};
template <>
struct Keys<TransitArtworkDataSource> {
  static constexpr auto table = std::tuple_cat(
      std::tuple{key("artworkSourceType", &TransitArtworkDataSource::artworkSourceType),
                 key("artworkUseType", &TransitArtworkDataSource::artworkUseType),
                 key("iconFallbackShieldDataSource", &TransitArtworkDataSource::iconFallbackShieldDataSource),
                 key("hasRoutingIncidentBadge", &TransitArtworkDataSource::hasRoutingIncidentBadge),
                 key("accessibilityText", &TransitArtworkDataSource::accessibilityText),
                 key("width", &TransitArtworkDataSource::intrinsicWidth)},
      detail::keysOfPart<ShieldDataSource, &TransitArtworkDataSource::shieldDataSource>(),
      detail::keysOfPart<IconDataSource, &TransitArtworkDataSource::iconDataSource>());
};
template <>
struct Keys<WorldHost> {
  static constexpr auto table =
      std::tuple{key("hosted", &WorldHost::hosted), key("compact", &WorldHost::compact),
                 key("expanded", &WorldHost::expanded), key("activeMode", &WorldHost::activeMode),
                 key("bounds", &WorldHost::bounds)};
};
template <>
struct Keys<WorldFavorite> {
  static constexpr auto table =
      std::tuple{key("kind", &WorldFavorite::kind), key("line", &WorldFavorite::line),
                 key("name", &WorldFavorite::name)};
};
template <>
struct Keys<WorldSystem> {
  static constexpr auto table = std::tuple{key("muid", &WorldSystem::muid), key("name", &WorldSystem::name),
                                           key("artwork", &WorldSystem::artwork)};
};
template <>
struct Keys<WorldLine> {
  static constexpr auto table =
      std::tuple{key("muid", &WorldLine::muid),
                 key("name", &WorldLine::name),
                 key("system", &WorldLine::system),
                 key("artwork", &WorldLine::artwork),
                 key("modeArtwork", &WorldLine::modeArtwork),
                 key("alternateArtwork", &WorldLine::alternateArtwork),
                 key("incidents", &WorldLine::incidents),
                 key("identifier", &WorldLine::identifier),
                 key("departureTimeDisplayStyle", &WorldLine::departureTimeDisplayStyle),
                 key("departuresAreVehicleSpecific", &WorldLine::departuresAreVehicleSpecific),
                 key("lineColorString", &WorldLine::lineColorString),
                 key("showVehicleNumber", &WorldLine::showVehicleNumber),
                 key("operatingHours", &WorldLine::operatingHours)};
};
template <>
struct Keys<WorldIncident> {
  static constexpr auto table =
      std::tuple{key("muid", &WorldIncident::muid),
                 key("title", &WorldIncident::title),
                 key("secondaryText", &WorldIncident::secondaryText),
                 key("start", &WorldIncident::start),
                 key("end", &WorldIncident::end),
                 key("blocking", &WorldIncident::blocking),
                 key("fullDescription", &WorldIncident::fullDescription),
                 key("messageForRoutePlanning", &WorldIncident::messageForRoutePlanning),
                 key("messageForRouteStepping", &WorldIncident::messageForRouteStepping),
                 key("messageForNonRoutable", &WorldIncident::messageForNonRoutable),
                 key("infoURL", &WorldIncident::infoURL),
                 key("iconType", &WorldIncident::iconType),
                 key("created", &WorldIncident::created),
                 key("lastUpdated", &WorldIncident::lastUpdated),
                 key("affectedEntities", &WorldIncident::affectedEntities)};
};
template <>
struct Keys<Error> {
  static constexpr auto table =
      std::tuple{key("domain", &Error::domain), key("code", &Error::code), key("info", &Error::info)};
};
template <>
struct Keys<WorldService> {
  static constexpr auto table = std::tuple{
      key("delay", &WorldService::delay).checked(detail::notNegative), key("answer", &WorldService::answer),
      key("lines", &WorldService::lines), key("error", &WorldService::error)};
};
template <>
struct Keys<World> {
  static constexpr auto table = std::tuple{key("start", &World::start),
                                           key("locale", &World::locale),
                                           key("clockOffset", &World::clockOffset),
                                           key("layoutDirection", &World::layoutDirection),
                                           key("scale", &World::scale).checked(detail::positive),
                                           key("textSize", &World::textSize),
                                           key("seed", &World::seed),
                                           key("random", &World::random),
                                           key("host", &World::host),
                                           key("preferences", &World::preferences),
                                           key("favorites", &World::favorites),
                                           key("favoritesError", &World::favoritesError),
                                           key("systems", &World::systems),
                                           key("lines", &World::lines),
                                           key("incidents", &World::incidents),
                                           key("drawnArtworks", &World::drawnArtworks),
                                           key("service", &World::service),
                                           key("diagnosis", &World::diagnosis),
                                           key("capabilities", &World::capabilities),
                                           key("lockState", &World::lockState),
                                           key("opens", &World::opens),
                                           key("acceptsActivities", &World::acceptsActivities),
                                           key("archives", &World::archives),
                                           key("compresses", &World::compresses),
                                           key("bundle", &World::bundle),
                                           key("missingTexts", &World::missingTexts),
                                           key("missingImages", &World::missingImages)};
};

}  // namespace linewatch::simulation

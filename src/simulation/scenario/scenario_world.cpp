#include "simulation/scenario/scenario_world.h"

#include <array>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/transit_record_fields.h"
#include "ui/text_style.h"
#include "wire/json_text.h"
#include "wire/message_field.h"

namespace linewatch::simulation {

// The defaults of a new entry of a table.

static void startEntry(WorldSystem& system, const std::string& key, std::size_t count) {
  system.muid = count;
  system.name = key;
}
static void startEntry(WorldLine& line, const std::string& key, std::size_t count) {
  line.muid = count;
  line.name = key;
}
static void startEntry(WorldIncident& incident, const std::string&, std::size_t count) {
  incident.muid = count;
}

namespace {

const char* notNegative(const Seconds& seconds) {
  return seconds < Seconds(0) ? "must not be negative" : nullptr;
}

const char* positive(const double& number) { return number > 0 ? nullptr : "must be more than 0"; }

/// An entity that an incident affects.
struct ScriptedEntity final : TransitIncidentEntity {
  std::uint64_t muid() const override { return muid_; }
  bool hasNextStopIDs() const override { return nextStopIDs_.has_value(); }
  std::optional<std::vector<std::uint64_t>> nextStopIDs() const override { return nextStopIDs_; }

  std::uint64_t muid_ = 0;
  std::optional<std::vector<std::uint64_t>> nextStopIDs_;
};

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

}  // namespace

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
  static constexpr auto table = keysOfFields<ShieldDataSource>(FieldTable<ShieldDataSource>::fields);
};
template <>
struct Keys<Artwork> {
  static constexpr auto table =
      std::tuple_cat(std::tuple{key("artworkSourceType", &Artwork::artworkSourceType),
                                key("artworkUseType", &Artwork::artworkUseType),
                                key("iconFallbackShieldDataSource", &Artwork::iconFallbackShieldDataSource),
                                key("hasRoutingIncidentBadge", &Artwork::hasRoutingIncidentBadge),
                                key("accessibilityText", &Artwork::accessibilityText),
                                key("width", &Artwork::intrinsicWidth)},
                     keysOfPart<ShieldDataSource, &Artwork::shieldDataSource>(),
                     keysOfPart<IconDataSource, &Artwork::iconDataSource>());
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
struct Keys<ScriptedEntity> {
  static constexpr auto table =
      std::tuple{key("muid", &ScriptedEntity::muid_), key("nextStopIDs", &ScriptedEntity::nextStopIDs_)};
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
  static constexpr auto table =
      std::tuple{key("delay", &WorldService::delay).checked(notNegative),
                 key("answer", &WorldService::answer), key("error", &WorldService::error)};
};
template <>
struct Keys<World> {
  static constexpr auto table = std::tuple{key("locale", &World::locale),
                                           key("clockOffset", &World::clockOffset),
                                           key("layoutDirection", &World::layoutDirection),
                                           key("scale", &World::scale).checked(positive),
                                           key("textSize", &World::textSize),
                                           key("seed", &World::seed),
                                           key("random", &World::random),
                                           key("host", &World::host),
                                           key("preferences", &World::preferences),
                                           key("favorites", &World::favorites),
                                           key("systems", &World::systems),
                                           key("lines", &World::lines),
                                           key("incidents", &World::incidents),
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

template <class T>
static void read(Faults& faults, const Place& place, const Json& json, Restarting<T>& restarting) {
  T given = restarting.value;
  read(faults, place, json, given);
  restarting = std::move(given);
}

/// A diagnosis is written as its number.
static void read(Faults& faults, const Place& place, const Json& json, ConnectionFailureDiagnosis& value) {
  constexpr auto kLast = static_cast<std::int64_t>(ConnectionFailureDiagnosis::unknown);
  if (const auto number = wholeNumber(faults, place, json, 0, kLast)) {
    value = static_cast<ConnectionFailureDiagnosis>(*number);
  }
}

static void read(Faults& faults, const Place& place, const Json& json,
                 std::shared_ptr<const TransitIncidentEntity>& value) {
  auto entity = std::make_shared<ScriptedEntity>();
  read(faults, place, json, *entity);
  value = std::move(entity);
}

namespace {

/// Checks that the keys of lines, systems and incidents that the world refers to exist.
class References {
 public:
  References(Faults& faults, const Place& root, const World& world)
      : faults_(faults), root_(root), world_(world) {}

  void check() const {
    const Place favorites(root_, "favorites");
    for (std::size_t i = 0; i < world_.favorites.size(); ++i) {
      const auto& line = world_.favorites[i].line;
      if (line) checkKey(Place(Place(favorites, i), "line"), world_.lines, "line", *line);
    }
    const Place lines(root_, "lines");
    for (const auto& [name, line] : world_.lines) checkLine(Place(lines, name), line);
  }

 private:
  void checkLine(const Place& place, const WorldLine& line) const {
    if (line.system) checkKey(Place(place, "system"), world_.systems, "system", *line.system);
    const Place incidents(place, "incidents");
    for (std::size_t i = 0; i < line.incidents.size(); ++i) {
      checkKey(Place(incidents, i), world_.incidents, "incident", line.incidents[i]);
    }
  }
  template <class T>
  void checkKey(const Place& place, const KeyedTable<T>& table, std::string_view kind,
                const std::string& name) const {
    if (!table.find(name)) {
      faults_.add(place, "there is no " + std::string(kind) + " " + jsonQuoted(name));
    }
  }

  Faults& faults_;
  const Place& root_;
  const World& world_;
};

}  // namespace

void readWorld(Faults& faults, const Place& place, const JsonObject& object, std::string_view except,
               World& world) {
  readEntries(faults, place, object, world, except);
  References(faults, place, world).check();
}

}  // namespace linewatch::simulation

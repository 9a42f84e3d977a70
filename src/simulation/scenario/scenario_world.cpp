#include "simulation/scenario/scenario_world.h"

#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "simulation/scenario/scenario_keys.h"
#include "wire/json_text.h"

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

/// An entity that an incident affects.
struct ScriptedEntity final : TransitIncidentEntity {
  std::uint64_t muid() const override { return muid_; }
  bool hasNextStopIDs() const override { return nextStopIDs_.has_value(); }
  std::optional<std::vector<std::uint64_t>> nextStopIDs() const override { return nextStopIDs_; }

  std::uint64_t muid_ = 0;
  std::optional<std::vector<std::uint64_t>> nextStopIDs_;
};

}  // namespace

template <>
struct Keys<ScriptedEntity> {
  static constexpr auto table =
      std::tuple{key("muid", &ScriptedEntity::muid_), key("nextStopIDs", &ScriptedEntity::nextStopIDs_)};
};
template <class T>
static void read(Faults& faults, const Place& place, const Json& json, Restarting<T>& restarting) {
  T given = restarting.value;
  read(faults, place, json, given);
  restarting = std::move(given);
}

/// A date is written in seconds since 1970-01-01T00:00:00Z.
static void read(Faults& faults, const Place& place, const Json& json, Date& value) {
  Seconds sinceEpoch = value.time_since_epoch();
  read(faults, place, json, sinceEpoch);
  value = Date(sinceEpoch);
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
    if (const auto& answered = world_.service.lines) {
      const Place service(root_, "service");
      const Place places(service, "lines");
      for (std::size_t i = 0; i < answered->size(); ++i)
        checkKey(Place(places, i), world_.lines, "line", (*answered)[i]);
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

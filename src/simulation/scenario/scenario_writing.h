#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/artwork.h"
#include "shared/value.h"
#include "simulation/scenario/scenario.h"
#include "simulation/world/world.h"

/// Writes the parts of a scenario in the form in which `readScenario` reads them. A key is left out when its
/// value is the default.
namespace linewatch::simulation {

/// The keys of a system, line or incident. The `muid` is always there, and the incidents of a line, because
/// their defaults depend on the other entries.
Dictionary written(const WorldSystem& system);
Dictionary written(const WorldLine& line);
Dictionary written(const WorldIncident& incident);

Dictionary written(const WorldFavorite& favorite);
Dictionary written(const WorldHost& host);
Dictionary written(const Error& error);
/// The keys of a world whose tables of systems, lines and incidents are empty.
Dictionary written(const World& world);

/// The step, with its name under "do". A `Set` cannot be written: `setText` writes one. The halves of
/// `Appear` and `Disappear` are not written apart.
Dictionary written(const Step& step);

/// Keys with their values as JSON text.
using JsonMembers = std::vector<std::pair<std::string, std::string>>;
std::string objectText(const JsonMembers& members);
/// The step that changes these keys of the world.
std::string setText(JsonMembers changes);
/// The text of a scenario, one key of the world and one step a line.
std::string scenarioText(const JsonMembers& world, const std::vector<std::string>& steps);

}  // namespace linewatch::simulation

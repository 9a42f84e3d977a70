#pragma once

#include <cstddef>
#include <cstdint>

#include "simulation/scenario/scenario_json.h"

namespace linewatch::worlds {

/// A scenario with `stepCount` steps or a few more, in the format that `linewatch simulate` reads. The same
/// seed gives the same scenario on every machine.
simulation::Json randomScenario(std::uint64_t seed, std::size_t stepCount);

}  // namespace linewatch::worlds

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/outcome.h"

namespace linewatch::simulation {

/// Runs a scenario from its JSON text. Returns the lines of its transcript, or the first fault in it. While
/// it runs, the scenario's platform is installed; afterwards no platform is.
Outcome<std::vector<std::string>> runScenario(std::string_view text);

}  // namespace linewatch::simulation

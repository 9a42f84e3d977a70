#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/outcome.h"

namespace linewatch::simulation {

/// Runs a scenario from its JSON text: the lines of its transcript, or what is wrong with it. Installs a
/// platform of its own while it runs, and none is installed afterwards.
Outcome<std::vector<std::string>> runScenario(std::string_view text);

}  // namespace linewatch::simulation

#pragma once

#include <string>
#include <string_view>

#include "shared/outcome.h"

namespace linewatch::simulation {

/// The scenario with stand-ins for names, texts, addresses of pages and identifiers: equal ones stay equal,
/// different ones different. Colours, times and sizes stay. Returns the first fault when the text is not a
/// scenario.
Outcome<std::string> anonymousScenario(std::string_view text);

}  // namespace linewatch::simulation

#pragma once

#include "app/commands.h"

namespace linewatch::app {

/// Draws the widget at the end of a scenario's run, with the texts of the user's language. Needs no display.
Report drawScenario(const CommonOptions& options, const SimulateCommand& command);

}  // namespace linewatch::app

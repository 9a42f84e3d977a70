#pragma once

#include "app/commands.h"

namespace linewatch::app {

/// Shows the panel until it is closed. Needs a display.
Report panel(const CommonOptions& options, const PanelCommand& command);

}  // namespace linewatch::app

#pragma once

#include "app/commands.h"

namespace linewatch::app {

/// Draws the widget into a file, like in the panel. Needs no display.
Report render(const CommonOptions& options, const RenderCommand& command);

}  // namespace linewatch::app

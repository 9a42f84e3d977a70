#pragma once

#include "app/commands.h"

namespace linewatch::app {

/// Draws the widget into a file, as the panel shows it. Needs no display.
Report render(const CommonOptions& options, const RenderCommand& command);

}  // namespace linewatch::app

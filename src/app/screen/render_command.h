#pragma once

#include "app/commands.h"

namespace linewatch::app {

/// Draws the widget as it stands in its panel into a file. Needs no display.
Report render(const CommonOptions& options, const RenderCommand& command);

}  // namespace linewatch::app

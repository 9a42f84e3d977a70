#pragma once

#include "shared/environment.h"

namespace linewatch {

/// Whether a window can be shown: the environment names a display, and a display of this machine answers. If
/// Qt cannot open the display, it ends the process.
bool hasDisplay(const Environment& environment);

}  // namespace linewatch

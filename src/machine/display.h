#pragma once

#include "shared/environment.h"

namespace linewatch {

/// Whether a window can be shown: the environment names a display, and if it is on this machine, it answers.
/// Qt would end the process without one.
bool hasDisplay(const Environment& environment);

}  // namespace linewatch

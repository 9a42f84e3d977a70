#pragma once

#include "shared/environment.h"

namespace linewatch {

/// Whether a window could be shown: the environment names a display, and where that is one of this machine it
/// answers. Qt would end the process where there is none.
bool hasDisplay(const Environment& environment);

}  // namespace linewatch

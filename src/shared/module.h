#pragma once

#include <string_view>

#include "shared/outcome.h"

namespace linewatch {

/// The address of the function `entry` in a shared object of the program, e.g. "libzip", which the first call
/// loads from `installedParts()`. A module holds code that most runs do not need and whose libraries would
/// slow down every start. Any thread.
Outcome<void*> moduleEntry(std::string_view module, const char* entry);

}  // namespace linewatch

#pragma once

#include <string_view>

#include "shared/outcome.h"

namespace linewatch {

/// The address of `entry` in a part of the program that is loaded when it is first needed, because most runs
/// do without it and its libraries take longer to load than such a run takes. It lies beside the program, in
/// ../lib/linewatch. Any thread.
Outcome<void*> moduleEntry(std::string_view module, const char* entry);

}  // namespace linewatch

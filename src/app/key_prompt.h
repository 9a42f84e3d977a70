#pragma once

#include <string>

#include "shared/outcome.h"

namespace linewatch::app {

/// Asks on the terminal for a key, which it does not show, or reads one line where standard input is no
/// terminal. `whose` completes "Key for ", e.g. "feed Metro". An error when no key came.
Outcome<std::string> askForKey(const std::string& whose);

}  // namespace linewatch::app

#pragma once

#include <string>

#include "shared/outcome.h"

namespace linewatch::app {

/// Asks for a key. On a terminal the key is not shown; otherwise one line of standard input is read. `whose`
/// completes "Key for ", e.g. "feed Metro". An error if there is no key.
Outcome<std::string> askForKey(const std::string& whose);

}  // namespace linewatch::app

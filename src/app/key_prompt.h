#pragma once

#include <cstdint>
#include <string>

#include "app/rider_texts.h"
#include "shared/outcome.h"

namespace linewatch::app {

/// Which documents a key is for.
enum class KeyUse : std::uint8_t { feed, timetable, alerts };

/// Asks for a key of the feed. On a terminal the key is not shown; otherwise one line of standard input is
/// read. An error in the rider's language if there is no key, and one with the code `cancelled` after
/// Control-C.
Outcome<std::string> askForKey(const RiderTexts& texts, KeyUse use, const std::string& feed);

}  // namespace linewatch::app

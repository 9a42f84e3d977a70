#pragma once

#include <string>

#include "feeds/gtfs/line_index.h"

namespace linewatch {

/// The few characters that stand for a route on its shield: its short name, else what its long name comes
/// down to ("Red Line" to "Red", "Antioch - Millbrae" to "A–M"), else its id.
std::string shieldText(const FeedRoute& route);

/// The few characters that stand for an agency on its badge: its name or id where that is short, else
/// initials. Empty for an agency with neither name nor id.
std::string badgeText(const FeedAgency& agency);

}  // namespace linewatch

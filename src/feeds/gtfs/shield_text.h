#pragma once

#include <string>

#include "feeds/gtfs/line_index.h"

namespace linewatch {

/// The few characters on a route's shield: its short name, else its long name abbreviated ("Red Line" to
/// "Red", "Antioch - Millbrae" to "A–M"), else its id.
std::string shieldText(const FeedRoute& route);

/// The few characters on an agency's badge: its name or id if short, else initials. Empty for an agency with
/// neither name nor id.
std::string badgeText(const FeedAgency& agency);

}  // namespace linewatch

#pragma once

#include <string>

#include "platform/transit_line.h"
#include "shared/value.h"

namespace linewatch::worlds {

/// A text with every field of the line, its system and its incidents that a random world sets.
std::string textOf(const TransitLineItem& line);
std::string textOf(const TransitIncidents& incidents);

/// What a row's user info carries, decoded from its bytes: the line of an activity record or the incidents of
/// an archived list, in the texts above. "undecodable" when the bytes are neither.
std::string contentOf(const Bytes& bytes);

}  // namespace linewatch::worlds

#pragma once

#include <cstdint>
#include <optional>

#include "platform/artwork.h"

namespace linewatch {

/// The mode of transport of a basic or extended route type; `other` for a type without an icon of its own,
/// such as a taxi, and for an absent one.
TransitMode modeOfRouteType(std::optional<std::int32_t> routeType);

}  // namespace linewatch

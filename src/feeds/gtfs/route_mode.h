#pragma once

#include <cstdint>
#include <optional>

#include "platform/artwork.h"

namespace linewatch {

/// The mode of transport that a basic or extended route type stands for; `other` for any that has no icon of
/// its own, such as a taxi, and for none.
TransitMode modeOfRouteType(std::optional<std::int32_t> routeType);

}  // namespace linewatch

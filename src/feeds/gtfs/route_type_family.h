#pragma once

#include <cstdint>
#include <optional>

namespace linewatch {

/// The basic route type that covers an extended one, e.g. 2 (rail) for 109 (suburban rail). Absent for a
/// basic type, and for an extended one that no basic type covers, such as an aeroplane.
std::optional<std::int32_t> basicRouteType(std::int32_t extendedType);

}  // namespace linewatch

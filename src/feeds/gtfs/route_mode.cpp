#include "feeds/gtfs/route_mode.h"

#include "feeds/gtfs/route_type_family.h"

namespace linewatch {

namespace {

struct RouteTypes {
  std::int32_t first;
  std::int32_t last;
  TransitMode mode;
};

constexpr RouteTypes kModes[] = {
    {0, 0, TransitMode::tram},  // and light rail
    {1, 1, TransitMode::metro},     {2, 2, TransitMode::rail},        {3, 3, TransitMode::bus},
    {4, 4, TransitMode::ferry},     {5, 7, TransitMode::cable},        // cable tram, aerial lift, funicular
    {11, 11, TransitMode::bus},                                        // trolleybus
    {12, 12, TransitMode::metro},                                      // monorail
    {300, 399, TransitMode::rail},                                     // suburban railway, in an older list
    {1100, 1114, TransitMode::air}, {1701, 1701, TransitMode::cable},  // cable car
};

}  // namespace

TransitMode modeOfRouteType(std::optional<std::int32_t> routeType) {
  if (!routeType) return TransitMode::other;
  const std::int32_t type = basicRouteType(*routeType).value_or(*routeType);
  for (const RouteTypes& types : kModes) {
    if (type >= types.first && type <= types.last) return types.mode;
  }
  return TransitMode::other;
}

}  // namespace linewatch

#include "feeds/gtfs/route_type_family.h"

namespace linewatch {

namespace {

struct Family {
  std::int32_t first;
  std::int32_t last;
  std::int32_t basicType;
};

constexpr Family kFamilies[] = {
    {100, 117, 2},    // railway
    {200, 209, 3},    // coach
    {400, 404, 1},    // urban railway: metro, underground
    {405, 405, 12},   // monorail
    {500, 500, 1},    // metro, in an older list
    {600, 600, 1},    // underground, in an older list
    {700, 716, 3},    // bus
    {800, 800, 11},   // trolleybus
    {900, 906, 0},    // tram
    {1000, 1021, 4},  // water transport
    {1200, 1200, 4},  // ferry
    {1300, 1307, 6},  // aerial lift
    {1400, 1402, 7},  // funicular
};

}  // namespace

std::optional<std::int32_t> basicRouteType(std::int32_t extendedType) {
  for (const Family& family : kFamilies) {
    if (extendedType >= family.first && extendedType <= family.last) return family.basicType;
  }
  return std::nullopt;
}

}  // namespace linewatch

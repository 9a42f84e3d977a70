#include "feeds/gtfs/route_type_family.h"

#include <optional>
#include <utility>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(RouteTypeFamily, GivesTheBasicTypeOfAnExtendedOne) {
  constexpr std::pair<int, int> kBasicTypes[] = {{100, 2},  {117, 2},  {200, 3},  {401, 1}, {405, 12},
                                                 {700, 3},  {715, 3},  {800, 11}, {900, 0}, {1000, 4},
                                                 {1200, 4}, {1300, 6}, {1400, 7}};
  for (const auto& [extended, basic] : kBasicTypes) EXPECT_EQ(basicRouteType(extended), basic) << extended;
  for (const int none : {118, 1100, 1501, 1700, 2, -1}) EXPECT_EQ(basicRouteType(none), std::nullopt) << none;
}

}  // namespace
}  // namespace linewatch

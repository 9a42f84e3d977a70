#include "feeds/gtfs/route_type_family.h"

#include <optional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(RouteTypeFamily, GivesTheBasicTypeOfAnExtendedOne) {
  for (const auto& [extended, basic] : std::vector<std::pair<int, std::optional<int>>>{{100, 2},
                                                                                       {117, 2},
                                                                                       {118, {}},
                                                                                       {200, 3},
                                                                                       {401, 1},
                                                                                       {405, 12},
                                                                                       {700, 3},
                                                                                       {715, 3},
                                                                                       {800, 11},
                                                                                       {900, 0},
                                                                                       {1000, 4},
                                                                                       {1100, {}},
                                                                                       {1200, 4},
                                                                                       {1300, 6},
                                                                                       {1400, 7},
                                                                                       {1501, {}},
                                                                                       {1700, {}},
                                                                                       {2, {}},
                                                                                       {-1, {}}}) {
    EXPECT_EQ(basicRouteType(extended), basic) << extended;
  }
}

}  // namespace
}  // namespace linewatch

#include "feeds/gtfs/merged_lines.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(MergedLines, TakesTheFirstOfRoutesWithOneIdAndKeepsEachAgency) {
  const auto index = [](std::string language, std::vector<FeedAgency> agencies,
                        std::vector<FeedRoute> routes) {
    return std::make_shared<const LineIndex>(
        LineIndex::Contents{"metro", std::move(language), std::move(agencies), std::move(routes)});
  };
  const std::vector<SharedLineIndex> parts{
      index("", {{"1", "Bus", ""}}, {{.id = "a", .shortName = "A", .agency = 0}, {.id = "b"}}),
      index("de", {{"1", "Rail", ""}, {"2", "Ship", ""}},
            {{.id = "a", .shortName = "other"}, {.id = "c", .shortName = "C", .agency = 1}})};
  const SharedLineIndex all = mergedLines(parts);
  EXPECT_EQ(all->language(), "de");
  ASSERT_EQ(all->routes().size(), 3U);
  EXPECT_EQ(all->routes()[*all->routeWithId("a")].shortName, "A");
  EXPECT_EQ(all->agencies()[*all->routes()[*all->routeWithId("c")].agency].name, "Ship");
  EXPECT_EQ(all->muidOfRoute(*all->routeWithId("c")), parts[1]->muidOfRoute(1));
  EXPECT_EQ(mergedLines(std::vector{parts[0]}), parts[0]);
}

}  // namespace
}  // namespace linewatch

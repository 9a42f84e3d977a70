#include "shared/rova_map.h"

#include <list>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(RovaMap, LeavesOutEmptyResultsAndStillCountsTheirPositions) {
  std::vector<std::size_t> positions;
  const auto mapped =
      RovaMap(std::list<std::string>{"a", "", "a"}, [&](const std::string& text, std::size_t at) {
        positions.push_back(at);
        return text.empty() ? std::nullopt : std::optional(text + std::to_string(at));
      });
  EXPECT_THAT(mapped, ElementsAre("a0", "a2"));
  EXPECT_THAT(positions, ElementsAre(0U, 1U, 2U));

  const auto pointers = RovaMap(std::vector{1, 2, 1}, [](int value, std::size_t) {
    return value == 2 ? nullptr : std::make_shared<int>(value);
  });
  EXPECT_THAT(pointers, ElementsAre(testing::Pointee(1), testing::Pointee(1)));
}

TEST(RovaMap, AnEmptyOrAbsentCollectionGivesAnEmptyListWithoutACall) {
  const auto never = [](int, std::size_t) -> std::optional<int> {
    ADD_FAILURE();
    return 0;
  };
  EXPECT_THAT(RovaMap(std::vector<int>{}, never), IsEmpty());
  EXPECT_THAT(RovaMap(static_cast<const std::vector<int>*>(nullptr), never), IsEmpty());
}

}  // namespace
}  // namespace linewatch

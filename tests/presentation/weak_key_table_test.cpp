#include "presentation/weak_key_table.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(WeakKeyTableTest, SweepsDestroyedObjectsAndAcceptsANewOneAtTheSameAddress) {
  WeakKeyTable<int, int> table;
  std::vector<std::shared_ptr<int>> kept;
  for (int i = 0; i < 10'000; ++i) {
    auto key = std::make_shared<int>(i);
    EXPECT_EQ(table.find(key.get()), nullptr);
    table.set(key, i);
    if (i % 1000 == 0) kept.push_back(key);
  }
  EXPECT_LT(table.entryCount(), 100U);
  ASSERT_EQ(table.keys(), kept) << "in the order of entering";
  for (const auto& key : kept) EXPECT_EQ(*table.find(key.get()), *key);
  table.set(kept[0], 42);
  EXPECT_EQ(*table.find(kept[0].get()), 42);
  table.remove(kept[1]);
  table.remove(kept[1]);
  EXPECT_EQ(table.find(kept[1].get()), nullptr);
  EXPECT_EQ(table.keys().size(), kept.size() - 1);
  table.set(nullptr, 1);
  EXPECT_EQ(table.find(nullptr), nullptr);
}

}  // namespace
}  // namespace linewatch

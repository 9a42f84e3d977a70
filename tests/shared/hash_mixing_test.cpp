#include "shared/hash_mixing.h"

#include <unordered_set>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(HashMixing, EveryBitOfAKeyReachesTheLowBits) {
  for (int shift = 0; shift < 52; ++shift) {
    std::unordered_set<std::uint64_t> slots;
    for (std::uint64_t number = 0; number < 4096; ++number) slots.insert(mixedHash(number << shift) % 4096);
    // Random hashes fill 63% of the slots.
    EXPECT_GT(slots.size(), 4096U * 6 / 10) << "shifted by " << shift;
  }
}

TEST(HashMixing, EqualHashesDoNotCancelAndTheirOrderCounts) {
  EXPECT_NE(mixedHash(1, 1), mixedHash(2, 2));
  EXPECT_NE(mixedHash(1, 2), mixedHash(2, 1));
}

}  // namespace
}  // namespace linewatch

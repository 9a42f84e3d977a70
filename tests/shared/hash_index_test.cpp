#include "shared/hash_index.h"

#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(HashIndex, FindsWhatATableFinds) {
  constexpr std::uint64_t kSeed = 20261124;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  std::mt19937_64 random(kSeed);
  // Hashes that all collide, that differ in their upper half alone, that count up, and that are good.
  std::size_t room = 0;
  for (const std::uint64_t factor : {0ULL, 1ULL << 32, 1ULL, 0x9E3779B97F4A7C15ULL}) {
    HashIndex index;
    // None, too little, too little for all, and more than enough.
    index.reserve(room);
    room = 40 * room + 1;
    std::vector<std::uint64_t> keys;
    std::unordered_map<std::uint64_t, std::uint32_t> table;
    const auto equals = [&](std::uint64_t key) {
      return [&keys, key](std::uint32_t place) { return keys[place] == key; };
    };
    EXPECT_FALSE(index.search(0, equals(0)).place());
    for (int i = 0; i < 2000; ++i) {
      const std::uint64_t key = random() % 1000;
      const auto place = static_cast<std::uint32_t>(keys.size());
      const auto search = index.search(key * factor, equals(key));
      const auto [known, isNew] = table.emplace(key, place);
      EXPECT_EQ(search.place().has_value(), !isNew);
      if (isNew) {
        // What a search found out may be left unused.
        EXPECT_FALSE(index.search(key * factor, equals(key)).place());
        index.enter(search, place);
        keys.push_back(key);
      }
      EXPECT_EQ(index.search(key * factor, equals(key)).place(), known->second);
    }
  }
}

}  // namespace
}  // namespace linewatch

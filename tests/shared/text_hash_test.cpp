#include "shared/text_hash.h"

#include <cstdint>
#include <string>
#include <unordered_set>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(TextHash, EachBitOfATextOfAnyLengthCounts) {
  std::unordered_set<std::size_t> hashes;
  std::size_t texts = 0;
  for (std::size_t length = 0; length <= 70; ++length) {
    std::string text(length, '\0');
    hashes.insert(hashOfText(text));
    ++texts;
    for (std::size_t bit = 0; bit < 8 * length; ++bit, ++texts) {
      std::string other = text;
      other[bit / 8] = static_cast<char>(1U << (bit % 8));
      hashes.insert(hashOfText(other));
    }
  }
  EXPECT_EQ(hashes.size(), texts);
}

TEST(TextHash, TextsThatCountUpFillATableEvenly) {
  std::unordered_set<std::size_t> slots;
  constexpr std::size_t kTexts = 1 << 12;
  for (std::size_t number = 0; number < kTexts; ++number)
    slots.insert(hashOfText("Delays near stop " + std::to_string(number)) % kTexts);
  // Of random hashes, 63% of the slots have one.
  EXPECT_GT(slots.size(), kTexts * 6 / 10);
}

TEST(TextHash, DoesNotGoByWhereTheTextStands) {
  const std::string text = "Line 4 ends at Harbour Square until the evening";
  for (std::size_t offset = 0; offset < 8; ++offset) {
    const std::string moved = std::string(offset, 'x') + text;
    EXPECT_EQ(hashOfText(std::string_view(moved).substr(offset)), hashOfText(text));
  }
}

}  // namespace
}  // namespace linewatch

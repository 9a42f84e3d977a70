#include "feeds/http/gzip_body.h"

#include <algorithm>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/http/gzip_sample.h"
#include "shared/failure.h"

namespace linewatch {
namespace {

constexpr std::size_t kLimit = 200'000;

/// The unpacked text, or the sentence of the error.
std::string unpacked(const std::string& packed, std::size_t piece, std::size_t limit = kLimit) {
  GzipBody body(limit);
  Bytes bytes;
  for (std::size_t start = 0; start < packed.size(); start += piece) {
    if (const auto error = body.take(std::string_view(packed).substr(start, piece), bytes))
      return sentenceOf(*error);
    EXPECT_LE(bytes.size(), limit);
  }
  if (const auto error = body.finish()) return sentenceOf(*error);
  return {bytes.begin(), bytes.end()};
}

/// Text that takes several blocks of output and hardly packs.
std::string longText() {
  std::string text(kLimit, '\0');
  unsigned state = 1;
  std::ranges::generate(
      text, [&state] { return static_cast<char>((state = state * 1103515245U + 12345U) >> 24U); });
  return text;
}

TEST(GzipBody, UnpacksPiecesOfAnySize) {
  const std::string text = longText();
  const std::string packed = gzip(text) + gzip("") + gzip("");
  for (const std::size_t piece : {std::size_t{13}, std::size_t{1000}, std::size_t{65536}, packed.size()})
    EXPECT_TRUE(unpacked(packed, piece) == text) << piece;
}

TEST(GzipBody, RefusesAStreamThatIsCutOff) {
  const std::string packed = gzip("a text of a feed, of a feed, of a feed");
  for (std::size_t length = 0; length < packed.size(); ++length)
    EXPECT_EQ(unpacked(packed.substr(0, length), 7), "the answer's gzip stream is cut off") << length;
  EXPECT_EQ(unpacked(packed + packed.substr(0, 5), 7), "the answer's gzip stream is cut off");
}

TEST(GzipBody, RefusesADamagedTrailerAndBytesAfterIt) {
  const std::string packed = gzip("a text of a feed");
  for (std::size_t place = packed.size() - 8; place < packed.size(); ++place) {
    std::string damaged = packed;
    damaged[place] = static_cast<char>(damaged[place] ^ 0x10);
    EXPECT_EQ(unpacked(damaged, 5), "the answer's gzip stream is damaged") << place;
  }
  EXPECT_EQ(unpacked(packed + "garbage", 5), "the answer's gzip stream is damaged");
  EXPECT_EQ(unpacked(packed + std::string(20, '\0'), 5), "the answer's gzip stream is damaged");
}

TEST(GzipBody, RefusesMoreThanTheLimitWithTheFirstPieceThatGivesIt) {
  const std::string bomb = gzip(std::string(5'000'000, '\0'));
  GzipBody body(kLimit);
  Bytes bytes;
  const auto error = body.take(std::string_view(bomb).substr(0, 1000), bytes);
  ASSERT_TRUE(error);
  EXPECT_EQ(failureCodeOf(*error), FailureCode::tooLarge);
  EXPECT_LE(bytes.size(), kLimit);
  EXPECT_EQ(unpacked(gzip("12345"), 3, 5), "12345");
  EXPECT_EQ(unpacked(gzip("123456"), 3, 5), "it unpacks to more than 5 bytes");
  EXPECT_EQ(unpacked(gzip("12345") + gzip("6"), 3, 5), "it unpacks to more than 5 bytes");
}

}  // namespace
}  // namespace linewatch

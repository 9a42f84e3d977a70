#include <limits>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/line_index_encoding.h"
#include "shared/failure.h"

namespace linewatch {
namespace {

LineIndex::Contents wideContents() {
  return {.feedName = "Falkenrive",
          .language = "de",
          .agencies = {{"FVT", "Falkenrive Verkehr · Transports", "de"}, {"", "", ""}},
          .routes = {{"r1", "1", std::string(300, 'n'), 1, 109, "00FF7F", "FFFFFF"},
                     {"r2", "", "", std::nullopt, std::numeric_limits<std::int32_t>::min(), "", "0A0B0C"},
                     {std::string("\0", 1), "é", "", 0, std::nullopt, "ABCDEF", ""}}};
}

std::string decodingFaultOf(const Bytes& bytes) {
  const Outcome<LineIndex::Contents> contents = decodeLineIndex(bytes);
  return contents ? "none" : sentenceOf(contents.error());
}

TEST(LineIndexEncoding, HasTheDocumentedLayout) {
  const LineIndex::Contents contents{.feedName = "f",
                                     .language = "",
                                     .agencies = {{"a", "", ""}},
                                     .routes = {{"r", "1", "", 0, -2, "0102FF", ""}}};
  EXPECT_EQ(encodeLineIndex(contents),
            (Bytes{'L', 'W', 'L', 'I', 1,   1, 'f', 0,    1,    1,    'a',  0, 0, 1,
                   7,   1,   'r', 1,   '1', 0, 0,   0xFE, 0xFF, 0xFF, 0xFF, 1, 2, 0xFF}));
}

TEST(LineIndexEncoding, RoundTripsEveryContents) {
  EXPECT_EQ(*decodeLineIndex(encodeLineIndex(wideContents())), wideContents());
  EXPECT_EQ(*decodeLineIndex(encodeLineIndex({})), LineIndex::Contents());
}

TEST(LineIndexEncoding, LeavesOutMalformedColors) {
  LineIndex::Contents contents = wideContents();
  contents.routes[0].color = "ff0000";
  contents.routes[1].textColor = "white";
  const LineIndex::Contents kept = *decodeLineIndex(encodeLineIndex(contents));
  EXPECT_EQ(kept.routes[0].color, "");
  EXPECT_EQ(kept.routes[1].textColor, "");
}

TEST(LineIndexEncoding, RefusesMalformedBytes) {
  const Bytes good = encodeLineIndex(wideContents());
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_NE(decodingFaultOf(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size))), "none")
        << size;
  }
  Bytes longer = good;
  longer.push_back(0);
  EXPECT_THAT(decodingFaultOf(longer), testing::HasSubstr("there are bytes after the end"));
  Bytes newer = good;
  newer[4] = 2;
  EXPECT_EQ(decodingFaultOf(newer), "kept lines of a feed: byte 5: they are of another kind or version");

  const Bytes head{'L', 'W', 'L', 'I', 1, 0, 0};
  const auto faultAfterHead = [&head](const Bytes& rest) {
    Bytes bytes = head;
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return decodingFaultOf(bytes);
  };
  EXPECT_EQ(faultAfterHead({0, 0}), "none");
  EXPECT_THAT(faultAfterHead({0x80, 0, 0}), testing::HasSubstr("a number is malformed"));
  EXPECT_THAT(faultAfterHead({0xFF, 0xFF, 0xFF, 0xFF, 0x1F, 0}), testing::HasSubstr("a number is malformed"));
  EXPECT_THAT(faultAfterHead({0xFF, 0xFF, 0xFF, 0xFF, 0x0F}), testing::HasSubstr("the bytes end too early"));
  EXPECT_THAT(faultAfterHead({0, 0xFF, 0xFF, 0xFF, 0xFF, 0x0F}),
              testing::HasSubstr("the bytes end too early"));
  EXPECT_THAT(faultAfterHead({0, 1, 1, 0, 0, 0, 0}), testing::HasSubstr("an agency that is not there"));
  EXPECT_THAT(faultAfterHead({0, 1, 16, 0, 0, 0}), testing::HasSubstr("unknown parts"));
}

TEST(LineIndexEncoding, HasOneFormForEachContents) {
  std::mt19937 random(7);
  const Bytes good = encodeLineIndex(wideContents());
  for (int round = 0; round < 5000; ++round) {
    Bytes bytes = good;
    for (auto changes = 1 + random() % 3; changes > 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
    }
    const Outcome<LineIndex::Contents> contents = decodeLineIndex(bytes);
    if (!contents) continue;
    ASSERT_EQ(encodeLineIndex(*contents), bytes);
  }
}

}  // namespace
}  // namespace linewatch

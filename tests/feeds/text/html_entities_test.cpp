#include "feeds/text/html_entities.h"

#include <gtest/gtest.h>

#include "feeds/text/utf8.h"

namespace linewatch {
namespace {

TEST(HtmlEntities, NamesAreFoundAtBothEndsOfTheTableAndBetween) {
  EXPECT_EQ(namedCharacter("AElig"), 0xC6);
  EXPECT_EQ(namedCharacter("eacute"), 0xE9);
  EXPECT_EQ(namedCharacter("Eacute"), 0xC9) << "case tells two letters apart";
  EXPECT_EQ(namedCharacter("nbsp"), 0xA0);
  EXPECT_EQ(namedCharacter("zwnj"), 0x200C);
  for (const char* none : {"", "eacut", "eacutes", "EACUTE", "zzz", "A"}) {
    EXPECT_EQ(namedCharacter(none), std::nullopt) << none;
  }
}

TEST(HtmlEntities, NumbersAreCharacters) {
  EXPECT_EQ(numberedCharacter(233), 0xE9);
  EXPECT_EQ(numberedCharacter(0x1F68B), 0x1F68B);
  EXPECT_EQ(numberedCharacter(0x10FFFF), 0x10FFFF);
  for (const std::int32_t none : {0, -1, 0xD800, 0xDFFF, 0x110000}) {
    EXPECT_EQ(numberedCharacter(none), kReplacementCharacter) << none;
  }
}

TEST(HtmlEntities, NumbersOfControlsAreWindows1252) {
  EXPECT_EQ(numberedCharacter(127), 127);
  EXPECT_EQ(numberedCharacter(128), 0x20AC);
  EXPECT_EQ(numberedCharacter(150), 0x2013);
  EXPECT_EQ(numberedCharacter(159), 0x178);
  EXPECT_EQ(numberedCharacter(160), 160);
}

}  // namespace
}  // namespace linewatch

#include "companion/details_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(DetailsText, SplitsAtLineEndsWordsOrCharacters) {
  EXPECT_THAT(textBlocks("", 10), IsEmpty());
  EXPECT_THAT(textBlocks("one line", 10), ElementsAre("one line"));
  EXPECT_THAT(textBlocks("line 1\nb c\n\nline 4", 12), ElementsAre("line 1\nb c\n", "line 4"))
      << "an empty line stays";
  EXPECT_THAT(textBlocks("some words in a row", 12), ElementsAre("some words", "in a row"));
  EXPECT_THAT(textBlocks("a\nwordwithoutend", 9), ElementsAre("a\nwordwit", "houtend"))
      << "a break near the start would make many tiny blocks";
  EXPECT_THAT(textBlocks("ééé", 3), ElementsAre("é", "é", "é")) << "characters stay whole";
}

TEST(DetailsText, KeepsEveryCharacterOfALongText) {
  std::string text;
  for (int i = 0; i < 20'000; ++i) text += "Wörter " + std::to_string(i) + (i % 7 == 0 ? "\n\n" : " ");
  std::string joined;
  for (const std::string_view block : textBlocks(text, 1000)) {
    EXPECT_LE(block.size(), 1000U);
    joined += std::string(block) + text[joined.size() + block.size()];
  }
  EXPECT_EQ(joined.substr(0, text.size()), text);
  EXPECT_THAT(textBlocks(std::string(10, '\x80'), 4), testing::SizeIs(testing::Gt(2U))) << "not UTF-8";
}

TEST(DetailsText, LeavesOutATitleThatTheDescriptionRepeats) {
  const std::tuple<std::string_view, std::string_view, std::string_view> rows[] = {
      {"Line 4 closed. Take bus 12.", "Line 4 closed", "Take bus 12."},
      {"LINE 4 CLOSED\nTake bus 12.", "Line 4 closed.", "Take bus 12."},
      {"Line 4 closed!", "Line 4 closed", ""},
      {"Line 4 closed between A and B", "Line 4 closed", "Line 4 closed between A and B"},
      {"Works: from 8.30 on", "Works: from 8", "Works: from 8.30 on"},
      {" Take bus 12. ", "", "Take bus 12."},
      {"Take bus 12.", "...", "Take bus 12."},
  };
  for (const auto& [description, title, expected] : rows)
    EXPECT_EQ(descriptionWithoutTitle(description, title), expected) << description;
}

TEST(DetailsText, RemovesDuplicateWords) {
  EXPECT_THAT(distinctWords({"Severe", "", "No service", "no service", "Strike"}, "Strike."),
              ElementsAre("Severe", "No service"));
  EXPECT_TRUE(namesAll("Harbour and Zoo closed", {"Zoo", "Harbour"}));
  EXPECT_FALSE(namesAll("Harbour and Zoo closed", {"Zoo", "Hills"}));
}

}  // namespace
}  // namespace linewatch

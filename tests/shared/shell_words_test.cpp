#include "shared/shell_words.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(ShellWordsTest, ReadsBackEveryQuotedWord) {
  EXPECT_EQ(shellQuoted("city:U4"), "city:U4");
  for (const std::string word :
       {"", "Red Line", "it's", "'", "$(id)", "`id`", "a\"b", "a\\b", "#1", "*", "U4;id", "Zürich"}) {
    const auto words = shellWords("mute " + shellQuoted(word) + " off");
    ASSERT_TRUE(words) << word;
    EXPECT_THAT(*words, testing::ElementsAre("mute", word, "off"));
  }
}

}  // namespace
}  // namespace linewatch

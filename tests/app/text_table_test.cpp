#include "app/text_table.h"

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/terminal_width.h"

namespace linewatch::app {
namespace {

using testing::ElementsAre;

TEST(TerminalWidth, CountsColumnsAsATerminalDoes) {
  for (const auto& [text, columns] : std::vector<std::pair<const char*, std::size_t>>{
           {"", 0},
           {"Zürich", 6},
           {"e\u0301", 1},  // a combining accent
           {"銀座線", 6},
           {"ｱｲｳ", 3},                 // half the width
           {"Ａ", 2},                  // full width
           {"\u1112\u1161\u11ab", 2},  // Hangul in parts
           {"हिन्दी", 5},               // marks beside and above
           {"🚋", 2},
           {"🇨🇭🇩🇪", 4},             // flags, of two letters each
           {"👩\u200d👩\u200d👧", 2},  // a family, joined
           {"👋🏽", 2},         // with a skin tone
           {"☀", 1},
           {"☀\ufe0f", 2},  // as an emoji
           {"a\u200bb", 2},
           {"\xff!", 2},
       })
    EXPECT_EQ(terminalWidth(text), columns) << text;
}

TEST(TerminalWidth, BreaksOnlyWordsThatAreWiderThanALine) {
  EXPECT_THAT(wrapped("a bb ccc", 4), ElementsAre("a bb", "ccc"));
  EXPECT_THAT(wrapped("to 銀座線銀座線 or so", 5), ElementsAre("to", "銀座", "線銀", "座線", "or so"));
  EXPECT_THAT(wrapped("a👩\u200d👧b", 1), ElementsAre("a", "👩\u200d👧", "b"));
  EXPECT_THAT(wrapped("a  b", 0), ElementsAre("a  b"));
}

TEST(TextTable, AlignsColumnsAndLeavesNoBlanksAtTheEnds) {
  const std::vector<std::vector<TableCell>> rows{{{.text = "銀座"}, {}, {.text = "b"}, {.text = ""}},
                                                 {{.text = "x"}, {}, {.text = "long"}, {.text = "end"}}};
  EXPECT_EQ(textTable(rows, {}), "銀座  b\nx     long  end\n");
  EXPECT_EQ(textTable(rows, {.columns = 15}), textTable(rows, {}));
  EXPECT_EQ(textTable(rows, {.columns = 14}), "銀座\n  b\nx\n  long\n  end\n");
}

TEST(TextTable, FitsAnyWidth) {
  const std::vector<std::vector<TableCell>> rows{{{.text = "[12]", .painted = "\x1b[1m 12 \x1b[0m"},
                                                  {.text = "Friedhofallee – Côte-aux-Tilleuls"},
                                                  {.text = "s:1"}},
                                                 {{.text = "[S 1]"},
                                                  {.text = "https://example.org/a/very/long/address"},
                                                  {.text = "山手線の内回りと外回り"}}};
  for (std::size_t columns = 2; columns < 40; ++columns) {
    std::istringstream lines(textTable(rows, {.columns = columns}));
    for (std::string line; std::getline(lines, line);) {
      if (line.find('\x1b') != std::string::npos) continue;
      EXPECT_LE(terminalWidth(line), columns) << line;
    }
  }
}

TEST(TextTable, IndentsAParagraph) {
  EXPECT_EQ(paragraph("  key  one two three", 9, {.columns = 16}),
            "  key one\n         two\n         three\n");
  EXPECT_EQ(paragraph("a b", 2, {}), "a b\n");
}

}  // namespace
}  // namespace linewatch::app

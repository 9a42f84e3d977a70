#include "machine/terminal_line.h"

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(TerminalLine, ReplacesControlCharacters) {
  const std::pair<std::string, std::string> rows[] = {
      {"a\nb\r\tc", "a b  c"},
      {"\x1B[2J\x07\x7F", " [2J  "},
      {"C1: \xC2\x9B"
       "31m",
       "C1:  31m"},
      {"lone \x9B, cut \xE2\x80", "lone  , cut \xE2\x80"},
      {"\u202Eabc\u2066\u2067\u2028", " abc   "},
      {std::string("nul\0!", 5), "nul !"},
  };
  for (const auto& [text, line] : rows) EXPECT_EQ(terminalLine(text), line);
}

TEST(TerminalLine, KeepsEveryOtherText) {
  for (const char* text : {"", "Line 7 – Zoo", "Ün\u00A0z", "銀座線 🚋", "\u2027\u202F\u2065\u206A",
                           "\u2068Zoo\u2069", "\xFF\xFE"})
    EXPECT_EQ(terminalLine(text), text);
}

}  // namespace
}  // namespace linewatch

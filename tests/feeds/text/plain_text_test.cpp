#include "feeds/text/plain_text.h"

#include <string>

#include <gtest/gtest.h>

#include "feeds/text/single_line.h"

namespace linewatch {
namespace {

struct PlainRow {
  const char* name;
  std::string written;
  std::string text;
};

TEST(PlainText, FoldsWhiteSpace) {
  for (const PlainRow& row : {
           PlainRow{"spaces", "  a \t b\xC2\xA0\xE2\x80\xAF\xE3\x80\x80 c ", "a b c"},
           PlainRow{"lines", "a \r\n b\rc\n\n\n\nd\n", "a\nb\nc\n\nd"},
           PlainRow{"Unicode's own line ends", "a\u2028b\u2029c\u0085d", "a\nb\n\nc\nd"},
           PlainRow{"Unicode's line end among tags", "<p>a,\u2028b</p>", "a,\nb"},
           PlainRow{"nothing", " \r\n <br> <p></p>", ""},
       }) {
    EXPECT_EQ(plainText(row.written), row.text) << row.name;
  }
}

TEST(PlainText, DropsHiddenCharacters) {
  for (const PlainRow& row : {
           PlainRow{"control characters", std::string("a\0\x01\x7F\xC2\x9B", 6) + "b", "ab"},
           PlainRow{"escape sequences", "\x1B[31mred", "[31mred"},
           PlainRow{"direction overrides and isolates", "\u202Eabc\u202C\u2067d\u2069", "abcd"},
           PlainRow{"overrides by number", "&#x202E;abc", "abc"},
           PlainRow{"byte order mark", "\uFEFFworks", "works"},
           PlainRow{"tags of language", "a\U000E0001\U000E0041\U000E007Fb", "ab"},
           PlainRow{"Hangul fillers", "a\u115F\u1160\u3164\uFFA0b", "ab"},
           PlainRow{"other fillers", "a\u2800\u034F\u17B4\u180Eb", "ab"},
           PlainRow{"no characters", "a\uFFFE\uFDD0\U0001FFFFb", "ab"},
           PlainRow{"fillers alone", "\u3164\u3164 \U000E0041", ""},
           PlainRow{"joiners alone", "\u200D\u200C\uFE0F", ""},
           PlainRow{"no UTF-8", "a\xFF\xC3(\xE2\x82", "a\xEF\xBF\xBD\xEF\xBF\xBD(\xEF\xBF\xBD"},
       }) {
    EXPECT_EQ(plainText(row.written), row.text) << row.name;
  }
}

TEST(PlainText, KeepsWhatScriptsNeed) {
  for (const char* text :
       {"\u05D0\u200F!", "\u0645\u06CC\u200C\u062E", "\U0001F468\u200D\U0001F527", "\u26A0\uFE0F"}) {
    EXPECT_EQ(plainText(text), text);
  }
}

TEST(SingleLine, IsCleanedAsTextIs) {
  for (const PlainRow& row : {
           PlainRow{"white space", " Line\t5\n north ", "Line 5 north"},
           PlainRow{"hidden characters", "5\u202E\u2066\U000E0041\u3164\x1B", "5"},
           PlainRow{"fillers alone", "\u3164\u115F", ""},
           PlainRow{"other scripts", "\u05E7\u05D5 5", "\u05E7\u05D5 5"},
       }) {
    EXPECT_EQ(singleLine(row.written), row.text) << row.name;
  }
}

TEST(WebAddress, IsOnlyWhatMayBeOpened) {
  const auto address = [](const char* written) { return webAddress(written).value_or("none"); };
  EXPECT_EQ(address(" https://example.org/a?b=1&amp;c=2 "), "https://example.org/a?b=1&c=2");
  EXPECT_EQ(address("HTTP://example.org"), "HTTP://example.org");
  EXPECT_EQ(address("www.example.org/x"), "https://www.example.org/x");
  for (const char* none :
       {"", "https://", "javascript:alert(1)", "file:///etc/passwd", "see the page", "https://a b"}) {
    EXPECT_EQ(address(none), "none") << none;
  }
}

}  // namespace
}  // namespace linewatch

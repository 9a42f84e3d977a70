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
           PlainRow{"control characters", std::string("a\0\x1B\x7F\xC2\x9B", 6) + "b", "ab"},
           PlainRow{"direction overrides", "\u202Eabc\u202C\u2067d\u2069", "abcd"},
           PlainRow{"byte order mark and tags", "\uFEFFa\U000E0001\U000E0041b", "ab"},
           PlainRow{"fillers", "a\u115F\u3164\uFFA0\u2800\u034Fb", "ab"},
           PlainRow{"annotations and no characters", "a\uFFF9\uFFFE\uFDD0\U0001FFFFb", "ab"},
           PlainRow{"nothing visible", "\u3164 \U000E0041\u200D\uFE0F", ""},
           PlainRow{"no UTF-8", "a\xFF\xC3(\xE2\x82", "a\xEF\xBF\xBD\xEF\xBF\xBD(\xEF\xBF\xBD"},
           PlainRow{"needed by Hebrew and Persian", "\u05D0\u200F!\u06CC\u200C\u062E",
                    "\u05D0\u200F!\u06CC\u200C\u062E"},
           PlainRow{"needed by emoji", "\U0001F468\u200D\U0001F527\u26A0\uFE0F",
                    "\U0001F468\u200D\U0001F527\u26A0\uFE0F"},
       }) {
    EXPECT_EQ(plainText(row.written), row.text) << row.name;
    EXPECT_EQ(singleLine(row.written), row.text) << row.name;
  }
  EXPECT_EQ(singleLine(" Line\t5 \n\u00A0 north\u2003"), "Line 5 north");
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

#include "wire/json_text.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(JsonText, WritesEveryKindOfValueInOneForm) {
  struct Row {
    const char* name;
    Value value;
    const char* json;
  };
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const Row& row : {
           Row{"boolean", true, "true"},
           Row{"lowest integer", std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
           Row{"highest integer", std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
           Row{"whole double", 100000.0, "100000"},
           Row{"fraction", 0.1, "0.1"},
           Row{"single-precision constant", static_cast<double>(0.2F), "0.20000000298023224"},
           Row{"negative zero", -0.0, "0"},
           Row{"huge", 1e300, "1e+300"},
           Row{"not a number", std::nan(""), "null"},
           Row{"infinite", -kInfinity, "null"},
           Row{"none", noValue(), "null"},
           Row{"no bytes", Bytes{}, "\"\""},
           Row{"one byte", Bytes{0xFB}, "\"+w==\""},
           Row{"two bytes", Bytes{0xFF, 0xFE}, "\"//4=\""},
           Row{"three bytes", Bytes{1, 2, 3}, "\"AQID\""},
           Row{"empty array", Array{}, "[]"},
           Row{"nested", Dictionary{{"b", Array{1, "x"}}, {"a", Dictionary{}}},
               R"({"a": {}, "b": [1, "x"]})"},
       }) {
    EXPECT_EQ(jsonText(row.value), row.json) << row.name;
  }
}

TEST(JsonText, EscapesStringsAndReplacesBytesThatAreNotUTF8) {
  EXPECT_EQ(jsonQuoted("a\"b\\c\n\t\x01\x7F/"), "\"a\\\"b\\\\c\\n\\t\\u0001\\u007f/\"");
  // Controls of two bytes, and their neighbours.
  EXPECT_EQ(jsonQuoted("\xC2\x80\xC2\x9B\xC2\xA0\xC3\x80"), "\"\\u0080\\u009b\xC2\xA0\xC3\x80\"");
  EXPECT_EQ(jsonQuoted("ü·😀"), "\"ü·😀\"");
  const std::string bad = "\xEF\xBF\xBD";
  struct Row {
    const char* name;
    std::string text;
    std::string mended;
  };
  for (const Row& row : {
           Row{"cut short", "x\xC3", "x" + bad},
           Row{"overlong", "\xC0\xAFx", bad + bad + "x"},
           Row{"surrogate", "\xED\xA0\x80", bad + bad + bad},
           Row{"beyond the last code point", "\xF4\x90\x80\x80", bad + bad + bad + bad},
           Row{"last code point", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
       }) {
    EXPECT_EQ(jsonQuoted(row.text), '"' + row.mended + '"') << row.name;
  }
}

}  // namespace
}  // namespace linewatch

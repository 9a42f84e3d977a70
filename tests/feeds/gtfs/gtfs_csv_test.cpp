#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/csv_table.h"
#include "feeds/text/utf8.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Rows = std::vector<std::vector<std::string>>;

Rows rowsOf(CsvReader& reader) {
  Rows rows;
  while (reader.next()) rows.emplace_back(reader.values().begin(), reader.values().end());
  return rows;
}

Rows rowsOf(std::string_view text) {
  CsvReader reader(text);
  Rows rows = rowsOf(reader);
  EXPECT_FALSE(reader.fault()) << text << ": " << reader.fault()->why;
  return rows;
}

TEST(CsvReader, ReadsEveryFormOfRowsAndValues) {
  EXPECT_EQ(rowsOf(""), Rows{});
  EXPECT_EQ(rowsOf("a"), (Rows{{"a"}}));
  EXPECT_EQ(rowsOf("\xEF\xBB\xBF"
                   "a,b\nc,d\n"),
            (Rows{{"a", "b"}, {"c", "d"}}));
  EXPECT_EQ(rowsOf("a,b\r\nc,d\re,f\r\n"), (Rows{{"a", "b"}, {"c", "d"}, {"e", "f"}}));
  EXPECT_EQ(rowsOf("\n\r\n a\t, b c ,\n \t\n,\n"), (Rows{{"a", "b c", ""}, {"", ""}}));
  EXPECT_EQ(rowsOf(R"( "a, b" ,"say ""hi""","",""""
"two
lines" ,"x")"),
            (Rows{{"a, b", R"(say "hi")", "", "\""}, {"two\nlines", "x"}}));
  EXPECT_EQ(rowsOf("\" kept \",6\" pipe\n\"\"\n"), (Rows{{" kept ", "6\" pipe"}, {""}}));
}

TEST(CsvReader, NamesTheLineOfEachRowAndOfTheFault) {
  CsvReader reader("a\n\n\"b\r\n\rc\"\nd,\"e\n\"x\n");
  std::vector<std::size_t> lines;
  while (reader.next()) lines.push_back(reader.line());
  EXPECT_THAT(lines, ElementsAre(1, 3));
  ASSERT_TRUE(reader.fault());
  EXPECT_EQ(reader.fault()->line, 7U);
  EXPECT_EQ(reader.fault()->why, "there is text after a closing quote");
  EXPECT_THAT(reader.values(), IsEmpty());
  EXPECT_FALSE(reader.next());
}

TEST(CsvReader, RefusesOpenQuotesLongValuesAndLongRows) {
  const std::pair<std::string, std::string> cases[] = {
      {"x\na,\"b", "a quote is not closed"},
      {"x\na,\"b\"\"", "a quote is not closed"},
      {"x\n" + std::string(CsvReader::kLongestValue + 1, 'a'), "a value is longer than 64 KiB"},
      {"x\n" + std::string(CsvReader::kMostValues, ','), "there are more than 512 values"},
  };
  for (const auto& [text, why] : cases) {
    CsvReader reader(text);
    EXPECT_EQ(rowsOf(reader), (Rows{{"x"}}));
    ASSERT_TRUE(reader.fault());
    EXPECT_EQ(reader.fault()->why, why);
    EXPECT_EQ(reader.fault()->line, 2U);
  }
}

TEST(CsvReader, LimitsTheNumberOfRows) {
  std::string text;
  for (std::size_t row = 0; row <= CsvReader::kMostRows; ++row) text += "a\n";
  CsvReader reader(text);
  while (reader.next()) {
  }
  ASSERT_TRUE(reader.fault());
  EXPECT_EQ(reader.fault()->why, "there are more than 200000 rows");
  EXPECT_EQ(reader.fault()->line, CsvReader::kMostRows + 1);

  CsvTable table("id\n1\n2\n3\n", 2);
  EXPECT_TRUE(table.next() && table.next()) << "the header is no row";
  EXPECT_FALSE(table.next());
  EXPECT_EQ(table.fault()->why, "there are more than 2 rows");
  CsvTable full("id\n1\n2\n", 2);
  while (full.next()) continue;
  EXPECT_FALSE(full.fault());
}

std::string randomValue(std::mt19937& random) {
  constexpr std::string_view kPieces[] = {"a",    "7", "\"", ",", "\n",   "\r",
                                          "\r\n", " ", "\t", "é", "\"\"", "線"};
  std::string value;
  for (auto pieces = random() % 6; pieces > 0; --pieces) value += kPieces[random() % std::size(kPieces)];
  return value;
}

std::string written(const std::string& value, std::mt19937& random) {
  const bool needsQuotes = value.find_first_of("\",\r\n \t") != std::string::npos;
  std::string text;
  if (!needsQuotes && random() % 2 == 0) {
    text = value;
  } else {
    text = "\"";
    for (const char byte : value) text += byte == '"' ? std::string("\"\"") : std::string(1, byte);
    text += "\"";
  }
  const auto blanks = [&random] { return std::string(random() % 3, random() % 2 == 0 ? ' ' : '\t'); };
  return blanks() + text + blanks();
}

TEST(CsvReader, ReadsBackWhatIsWritten) {
  std::mt19937 random(20261125);
  for (int round = 0; round < 2000; ++round) {
    Rows rows;
    std::string text;
    for (auto row = random() % 5; row > 0; --row) {
      std::vector<std::string>& values = rows.emplace_back();
      for (auto value = 1 + random() % 4; value > 0; --value) values.push_back(randomValue(random));
      if (values == std::vector<std::string>{""}) values.front() = "x";  // would be a blank line
      for (std::size_t i = 0; i < values.size(); ++i)
        text += (i == 0 ? "" : ",") + written(values[i], random);
      constexpr std::string_view kLineEnds[] = {"\n", "\r\n", "\r", "\n\n"};
      if (row > 1 || random() % 2 == 0) text += kLineEnds[random() % std::size(kLineEnds)];
    }
    ASSERT_EQ(rowsOf(text), rows) << text;
  }
}

TEST(CsvTable, FindsValuesByTheNamesOfTheirColumns) {
  CsvTable table("\xEF\xBB\xBFid , \"name\",id\n1\n2,two,x,extra\n");
  const auto id = table.column("id");
  const auto name = table.column("name");
  const auto missing = table.column("color");
  EXPECT_TRUE(table.has(name));
  EXPECT_FALSE(table.has(missing));
  ASSERT_TRUE(table.next());
  EXPECT_EQ(table.value(id), "1");
  EXPECT_EQ(table.value(name), "");
  ASSERT_TRUE(table.next());
  EXPECT_EQ(table.value(id), "2");
  EXPECT_EQ(table.value(name), "two");
  EXPECT_EQ(table.value(missing), "");
  EXPECT_FALSE(table.next());
}

TEST(Utf8, ReplacesInvalidBytes) {
  EXPECT_EQ(withValidUtf8("Zürich 東京 🚋"), "Zürich 東京 🚋");
  EXPECT_EQ(withValidUtf8("Z\xFCrich"), "Z\uFFFDrich");
  EXPECT_EQ(withValidUtf8("\xE6\x9D"), "\uFFFD");
  EXPECT_EQ(withValidUtf8("\xC0\x80|\xED\xA0\x80"), "\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD");
}

}  // namespace
}  // namespace linewatch

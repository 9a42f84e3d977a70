#include "localization/icu_localization.h"

#include <limits>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "localization/string_tables.h"

namespace linewatch {
namespace {

using testing::ElementsAre;

IcuLocalization localizationFor(std::string_view tag) { return IcuLocalization(*UserLocale::parse(tag)); }

std::string formatted(std::string_view tag, std::string_view key, std::vector<FormatArgument> arguments) {
  IcuLocalization texts = localizationFor(tag);
  for (const StringTable table : {StringTable::kestrow, StringTable::widget}) {
    const std::string text = texts.localizedString(key, "", table);
    if (!text.empty()) return texts.format(text, arguments);
  }
  return "no such text";
}

TEST(IcuLocalization, FormatsCountsForTheLocale) {
  const struct {
    const char* tag;
    const char* key;
    std::uint64_t count;
    const char* text;
  } rows[] = {
      {"en", "LineWatch_Summary_advisory_count", 1, "1 Advisory"},
      {"en", "LineWatch_Summary_advisory_count", std::numeric_limits<std::uint64_t>::max(),
       "18,446,744,073,709,551,615 Advisories"},
      {"de", "LineWatch_Summary_advisory_count", 1234567, "1.234.567 Störungen"},
      {"de-CH", "LineWatch_Summary_advisory_count", 1234567, "1’234’567 Störungen"},
      {"en", "LineWatch_GoodService_SecondaryText_Plural", 0, "No advisories for your favorite lines"},
      {"en", "LineWatch_GoodService_SecondaryText_Plural", 12, "No advisories for your 12 favorite lines"},
      {"de", "Transit_Incident_Not_Displayed_Incidents", 1234, "+1.234"},
      {"fr", "LineWatch_Summary_advisory_count", 0, "0 perturbation"},
      {"fr-CH", "LineWatch_Summary_advisory_count", 12345, "12 345 perturbations"},
      {"pl", "LineWatch_Summary_advisory_count", 5, "5 utrudnień"},
      {"ru", "LineWatch_AdvisoriesOverflow_SecondaryText", 21, "На 21 маршруте"},
      {"ar", "LineWatch_Summary_advisory_count", 2, "تنبيهان"},
      {"ar-EG", "LineWatch_Summary_advisory_count", 12, "١٢ تنبيهًا"},
      {"pt-BR", "LineWatch_Summary_advisory_count", 2, "2 ocorrências"},
      {"iw", "LineWatch_Summary_advisory_count", 2, "שני שיבושים"},
      {"zh-CN", "LineWatch_Summary_advisory_count", 2, "2 条公告"},
      // No tables of their own. 0 is singular in Bengali, but not in an English text.
      {"bn", "LineWatch_Summary_advisory_count", 0, "0 Advisories"},
      {"no", "LineWatch_Summary_advisory_count", 2, "2 Advisories"},
      {"zh-TW", "LineWatch_Summary_advisory_count", 2, "2 Advisories"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(formatted(row.tag, row.key, {row.count}), row.text) << row.tag << ' ' << row.key;
}

TEST(IcuLocalization, InsertsNamesUnchanged) {
  const std::string odd = "it's {0} '' #";
  EXPECT_EQ(formatted("en", "LineWatch_Single_Line_Prepended_Incident_Text", {"Red", odd}), "Red: " + odd);
  EXPECT_EQ(formatted("de", "LineWatch_2_Lines_Prepended_Incident_Text", {"U1", "U2", odd}),
            "U1 und U2: " + odd);
  EXPECT_EQ(formatted("en", "LineWatch_N_Lines_Prepended_Incident_Text", {"A, B", "C", "x"}),
            "A, B, and C: x");
  EXPECT_EQ(formatted("de", "LineWatch_N_Lines_Names_Concatenated", {"A, B", "C"}), "A, B und C");
}

TEST(IcuLocalization, ReturnsAnInvalidFormatUnchanged) {
  IcuLocalization texts = localizationFor("en");
  const FormatArgument arguments[] = {std::uint64_t{3}};
  for (const char* format :
       {"{", "{0", "{0, plural, one {#}", "{0, nonsense}", "{-1}", "{0, plural, one {x}}"}) {
    EXPECT_EQ(texts.format(format, arguments), format);
  }
  EXPECT_EQ(texts.format("{0} of {1}", arguments), "3 of {1}");
  EXPECT_EQ(texts.format("", {}), "");
}

const std::vector<TableText> kTexts = {{"en", "kestrow", "only English", "hello"},
                                       {"en", "kestrow", "both", "yes"},
                                       {"de", "kestrow", "both", "ja"},
                                       {"de-CH", "widget", "Swiss", "Tram"},
                                       {"en", "widget", "Swiss", "streetcar"},
                                       {"en", "feed", "STRIKE", "Strike"}};

TEST(IcuLocalization, FallsBackFromRegionToLanguageToEnglish) {
  const struct {
    const char* tag;
    const char* both;
    const char* swiss;
  } rows[] = {{"de", "ja", "streetcar"},
              {"de-AT", "ja", "streetcar"},
              {"fr", "yes", "streetcar"},
              {"en-GB", "yes", "streetcar"}};
  for (const auto& row : rows) {
    IcuLocalization texts(*UserLocale::parse(row.tag), kTexts);
    EXPECT_EQ(texts.localizedString("both", "?", StringTable::kestrow), row.both) << row.tag;
    EXPECT_EQ(texts.localizedString("only English", "?", StringTable::kestrow), "hello") << row.tag;
    EXPECT_EQ(texts.localizedString("Swiss", "?", StringTable::widget), row.swiss) << row.tag;
    EXPECT_EQ(texts.localizedString("Swiss", "?", StringTable::kestrow), "?") << row.tag;
    EXPECT_EQ(texts.feedString("STRIKE", "?"), "Strike") << row.tag;
  }
  IcuLocalization swiss(*UserLocale::parse("de-CH"), kTexts);
  EXPECT_EQ(swiss.localizedString("Swiss", "?", StringTable::widget), "Tram");
  EXPECT_EQ(swiss.localizedString("both", "?", StringTable::kestrow), "ja");
}

TEST(IcuLocalization, JoinsWithTheLocalesDelimiter) {
  const std::string_view names[] = {"A", "B", "C"};
  for (const auto& [tag, joined] : std::map<std::string, std::string>{
           {"en", "A, B, C"}, {"de-CH", "A, B, C"}, {"ja", "A、B、C"}, {"ar", "A وB وC"}}) {
    EXPECT_EQ(localizationFor(tag).joinCommaDelimited(names), joined) << tag;
  }
}

}  // namespace
}  // namespace linewatch

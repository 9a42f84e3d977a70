#include "localization/icu_localization.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/messagepattern.h>

#include "feeds/alerts/feed_texts.h"
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

/// The arguments of a pattern with the kinds that it makes of them.
std::set<std::pair<int, UMessagePatternArgType>> argumentsOf(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  const icu::MessagePattern pattern(
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int>(text.size()))), nullptr,
      error);
  EXPECT_TRUE(U_SUCCESS(error)) << text;
  std::set<std::pair<int, UMessagePatternArgType>> arguments;
  for (std::int32_t i = 0; i < pattern.countParts(); ++i) {
    if (pattern.getPartType(i) == UMSGPAT_PART_TYPE_ARG_START) {
      arguments.emplace(pattern.getPart(i + 1).getValue(), pattern.getPart(i).getArgType());
    }
  }
  return arguments;
}

TEST(StringTables, EveryLanguageHasEveryTextWithTheSameArguments) {
  std::map<std::pair<std::string_view, std::string_view>, std::map<std::string_view, std::string_view>> texts;
  std::set<std::string_view> languages;
  for (const TableText& text : embeddedTexts()) {
    languages.insert(text.language);
    auto& versions = texts[std::pair(text.table, text.key)];
    EXPECT_TRUE(versions.emplace(text.language, text.text).second) << text.key;
    EXPECT_FALSE(text.text.empty()) << text.key;
  }
  EXPECT_THAT(languages, ElementsAre("de", "en"));
  for (const auto& [key, versions] : texts) {
    ASSERT_TRUE(versions.contains("en")) << key.second;
    for (const std::string_view language : languages) {
      ASSERT_TRUE(versions.contains(language)) << key.second << " in " << language;
      EXPECT_EQ(argumentsOf(versions.at(language)), argumentsOf(versions.at("en")))
          << key.second << " in " << language;
    }
  }
}

TEST(StringTables, HoldTheTextsThatTheWidgetAsksFor) {
  const struct {
    StringTable table;
    std::size_t argumentCount;
    std::vector<const char*> keys;
  } rows[] = {
      {StringTable::kestrow,
       0,
       {"LineWatch_NoFavorite_Title", "LineWatch_NoFavorite_SecondaryText", "LineWatch_GoodService_Title",
        "LineWatch_GoodService_SecondaryText_Singular", "LineWatchLoadingError_Title",
        "LineWatchLoadingError_AirplaneMode_WLAN", "LineWatchLoadingError_AirplaneMode_WIFI",
        "LineWatchLoadingError_No_Internet", "LineWatchLoadingError_Uknown"}},
      {StringTable::kestrow,
       1,
       {"LineWatch_GoodService_SecondaryText_Plural", "LineWatch_Summary_advisory_count",
        "LineWatch_advisory_overflow_title", "LineWatch_AdvisoriesOverflow_SecondaryText"}},
      {StringTable::widget,
       1,
       {"LineWatch_GoodService_Overflow_SecondaryText", "Transit_Incident_Not_Displayed_Incidents"}},
      {StringTable::widget,
       2,
       {"LineWatch_Single_Line_Prepended_Incident_Text", "LineWatch_2_Lines_Concatenated",
        "LineWatch_N_Lines_Names_Concatenated"}},
      {StringTable::widget,
       3,
       {"LineWatch_2_Lines_Prepended_Incident_Text", "LineWatch_N_Lines_Prepended_Incident_Text"}},
  };
  IcuLocalization texts = localizationFor("en");
  for (const auto& row : rows) {
    for (const char* key : row.keys) {
      const std::string text = texts.localizedString(key, kLocalizedStringNotFound, row.table);
      EXPECT_NE(text, kLocalizedStringNotFound) << key;
      std::set<int> numbers;
      for (const auto& [number, type] : argumentsOf(text)) numbers.insert(number);
      EXPECT_EQ(numbers.size(), row.argumentCount) << key;
      if (!numbers.empty()) {
        EXPECT_EQ(*numbers.rbegin(), static_cast<int>(row.argumentCount) - 1) << key;
      }
    }
  }
}

TEST(IcuLocalization, CountsAreInTheLocalesFormsAndDigits) {
  const struct {
    const char* tag;
    const char* key;
    std::uint64_t count;
    const char* text;
  } rows[] = {
      {"en", "LineWatch_Summary_advisory_count", 0, "0 Advisories"},
      {"en", "LineWatch_Summary_advisory_count", 1, "1 Advisory"},
      {"en", "LineWatch_Summary_advisory_count", 2, "2 Advisories"},
      {"en", "LineWatch_Summary_advisory_count", 1000, "1,000 Advisories"},
      {"en", "LineWatch_Summary_advisory_count", 1234567, "1,234,567 Advisories"},
      {"en", "LineWatch_Summary_advisory_count", std::numeric_limits<std::uint64_t>::max(),
       "18,446,744,073,709,551,615 Advisories"},
      {"de", "LineWatch_Summary_advisory_count", 0, "0 Störungen"},
      {"de", "LineWatch_Summary_advisory_count", 1, "1 Störung"},
      {"de", "LineWatch_Summary_advisory_count", 2, "2 Störungen"},
      {"de", "LineWatch_Summary_advisory_count", 1000, "1.000 Störungen"},
      {"de", "LineWatch_Summary_advisory_count", 1234567, "1.234.567 Störungen"},
      {"de-CH", "LineWatch_Summary_advisory_count", 1234567, "1’234’567 Störungen"},
      {"en", "LineWatch_advisory_overflow_title", 2, "2 More Advisories"},
      {"de", "LineWatch_advisory_overflow_title", 2, "2 weitere Störungen"},
      {"en", "LineWatch_AdvisoriesOverflow_SecondaryText", 1, "On 1 line"},
      {"de", "LineWatch_AdvisoriesOverflow_SecondaryText", 1, "Auf 1 Linie"},
      {"en", "LineWatch_GoodService_SecondaryText_Plural", 0, "No advisories for your favorite lines"},
      {"en", "LineWatch_GoodService_SecondaryText_Plural", 12, "No advisories for your 12 favorite lines"},
      {"de", "LineWatch_GoodService_SecondaryText_Plural", 12, "Keine Störungen auf deinen 12 Linien"},
      {"en", "LineWatch_GoodService_Overflow_SecondaryText", 1, "No advisories for 1 other line"},
      {"de", "LineWatch_GoodService_Overflow_SecondaryText", 3, "Keine Störungen auf 3 weiteren Linien"},
      {"de", "Transit_Incident_Not_Displayed_Incidents", 1234, "+1.234"},
      // French takes 0 for singular; an English text does not.
      {"fr", "LineWatch_Summary_advisory_count", 0, "0 Advisories"},
      {"fr-CH", "LineWatch_Summary_advisory_count", 12345, "12’345 Advisories"},
  };
  for (const auto& row : rows)
    EXPECT_EQ(formatted(row.tag, row.key, {row.count}), row.text) << row.tag << ' ' << row.key;
}

TEST(IcuLocalization, NamesStandBeforeTheText) {
  const std::string odd = "it's {0} '' #";
  EXPECT_EQ(formatted("en", "LineWatch_Single_Line_Prepended_Incident_Text", {"Red", odd}), "Red: " + odd);
  EXPECT_EQ(formatted("de", "LineWatch_2_Lines_Prepended_Incident_Text", {"U1", "U2", odd}),
            "U1 und U2: " + odd);
  EXPECT_EQ(formatted("en", "LineWatch_N_Lines_Prepended_Incident_Text", {"A, B", "C", "x"}),
            "A, B, and C: x");
  EXPECT_EQ(formatted("de", "LineWatch_N_Lines_Names_Concatenated", {"A, B", "C"}), "A, B und C");
}

TEST(IcuLocalization, ATextThatIsNoValidFormatIsGivenUnchanged) {
  IcuLocalization texts = localizationFor("en");
  const FormatArgument arguments[] = {std::uint64_t{3}};
  for (const char* format :
       {"{", "{0", "{0, plural, one {#}", "{0, nonsense}", "{-1}", "{0, plural, one {x}}"}) {
    EXPECT_EQ(texts.format(format, arguments), format);
  }
  EXPECT_EQ(texts.format("{0} of {1}", arguments), "3 of {1}");
  EXPECT_EQ(texts.format("", {}), "");
}

TEST(StringTables, FeedWordsAreThoseThatStandInForMissingOnes) {
  const IcuLocalization texts = localizationFor("en");
  std::ptrdiff_t lookedUp = 0;
  const auto lookUp = [&](std::string_view key, std::string_view) {
    ++lookedUp;
    return texts.feedString(key, "missing");
  };
  EXPECT_EQ(FeedTexts::lookedUp(lookUp), FeedTexts::english());
  EXPECT_EQ(lookedUp, std::ranges::count_if(embeddedTexts(), [](const TableText& text) {
              return text.language == kFallbackLanguage && text.table == "feed";
            }));
}

constexpr TableText kTexts[] = {{"en", "kestrow", "only English", "hello"},
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
  for (const auto& [tag, joined] : std::map<std::string, std::string>{{"en", "A, B, C"}, {"de", "A, B, C"}}) {
    EXPECT_EQ(localizationFor(tag).joinCommaDelimited(names), joined) << tag;
  }
  constexpr TableText kJapanese[] = {{"ja", "widget", "k", "t"}};
  EXPECT_EQ(IcuLocalization(*UserLocale::parse("ja"), kJapanese).joinCommaDelimited(names), "A、B、C");
}

TEST(UserLocale, ReadsTagsAndPosixNames) {
  const std::map<std::string, std::string> rows = {{"de", "de"},
                                                   {"de-CH", "de-CH"},
                                                   {"de_CH.UTF-8", "de-CH"},
                                                   {"DE_at@euro", "de-AT"},
                                                   {"zh-hant-tw", "zh-Hant-TW"},
                                                   {"fil", "fil"}};
  for (const auto& [text, tag] : rows) {
    const auto locale = UserLocale::parse(text);
    ASSERT_TRUE(locale) << text;
    EXPECT_EQ(locale->tag(), tag);
  }
  for (const char* text : {"", "C", "deutsch", "x-private", "-de", "de-", "d e", "de/../..", "\xFF\xFF"}) {
    EXPECT_FALSE(UserLocale::parse(text)) << text;
  }
  EXPECT_FALSE(UserLocale::parse(std::string(100'000, 'a')));
  EXPECT_THAT(UserLocale::parse("zh-Hant-TW")->fallbacks(), ElementsAre("zh-Hant-TW", "zh-Hant", "zh"));
  EXPECT_EQ(UserLocale::parse("de-CH")->language(), "de");
  EXPECT_TRUE(UserLocale::parse("ar")->isRightToLeft());
  EXPECT_FALSE(UserLocale::parse("de")->isRightToLeft());
}

TEST(UserLocale, FollowsTheEnvironment) {
  using Variables = std::map<std::string, std::string>;
  const std::pair<Variables, const char*> rows[] = {
      {{}, "en"},
      {{{"LANG", "de_DE.UTF-8"}}, "de-DE"},
      {{{"LANG", "de_DE.UTF-8"}, {"LC_MESSAGES", "fr_CA"}}, "fr-CA"},
      {{{"LANG", "de_DE"}, {"LC_MESSAGES", "fr_CA"}, {"LC_ALL", "it"}}, "it"},
      {{{"LANG", "de_DE"}, {"LC_ALL", ""}}, "de-DE"},
      {{{"LANG", "de_DE"}, {"LC_ALL", "C.UTF-8"}}, "en"},
      {{{"LANG", "POSIX"}}, "en"},
      {{{"LANG", "?"}}, "en"},
  };
  for (const auto& [variables, tag] : rows) {
    const auto environment = [&variables = variables](const char* name) {
      const auto variable = variables.find(name);
      return variable == variables.end() ? nullptr : variable->second.c_str();
    };
    EXPECT_EQ(UserLocale::fromEnvironment(environment).tag(), tag);
  }
}

}  // namespace
}  // namespace linewatch

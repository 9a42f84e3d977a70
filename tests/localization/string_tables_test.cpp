#include "localization/string_tables.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/plurrule.h>
#include <unicode/strenum.h>

#include "feeds/alerts/feed_texts.h"
#include "localization/icu_localization.h"

namespace linewatch {
namespace {

using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

icu::MessagePattern patternOf(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  icu::MessagePattern pattern(unicode(text), nullptr, error);
  EXPECT_TRUE(U_SUCCESS(error)) << text;
  return pattern;
}

/// The arguments of a pattern, each with its type, e.g. a plural.
std::set<std::pair<int, UMessagePatternArgType>> argumentsOf(std::string_view text) {
  const icu::MessagePattern pattern = patternOf(text);
  std::set<std::pair<int, UMessagePatternArgType>> arguments;
  for (std::int32_t i = 0; i < pattern.countParts(); ++i) {
    if (pattern.getPartType(i) == UMSGPAT_PART_TYPE_ARG_START) {
      arguments.emplace(pattern.getPart(i + 1).getValue(), pattern.getPart(i).getArgType());
    }
  }
  return arguments;
}

using Categories = std::set<std::string>;

/// The plural categories of each plural argument, without forms for exact numbers such as "=0".
std::vector<Categories> pluralsIn(std::string_view text) {
  const icu::MessagePattern pattern = patternOf(text);
  std::vector<Categories> closed;
  // A plural argument may be inside a form of another one.
  std::vector<std::optional<Categories>> open;
  for (std::int32_t i = 0; i < pattern.countParts(); ++i) {
    const icu::MessagePattern::Part& part = pattern.getPart(i);
    if (part.getType() == UMSGPAT_PART_TYPE_ARG_START) {
      const bool isPlural = part.getArgType() == UMSGPAT_ARG_TYPE_PLURAL;
      open.push_back(isPlural ? std::optional(Categories()) : std::nullopt);
    } else if (part.getType() == UMSGPAT_PART_TYPE_ARG_LIMIT) {
      if (open.back()) closed.push_back(*open.back());
      open.pop_back();
    } else if (part.getType() == UMSGPAT_PART_TYPE_ARG_SELECTOR && open.back()) {
      std::string selector;
      pattern.getSubstring(part).toUTF8String(selector);
      if (!selector.starts_with('=')) open.back()->insert(selector);
    }
  }
  return closed;
}

/// The plural categories that a text in the language must have.
Categories categoriesOf(std::string_view language) {
  UErrorCode error = U_ZERO_ERROR;
  const auto locale = icu::Locale::forLanguageTag(std::string(language), error);
  const std::unique_ptr<icu::PluralRules> rules(icu::PluralRules::forLocale(locale, error));
  const std::unique_ptr<icu::StringEnumeration> keywords(rules->getKeywords(error));
  Categories categories;
  for (const char* keyword = keywords->next(nullptr, error); keyword;
       keyword = keywords->next(nullptr, error))
    categories.insert(keyword);
  EXPECT_TRUE(U_SUCCESS(error)) << language;
  return categories;
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
  EXPECT_THAT(languages, IsSupersetOf({"de", "en"}));
  for (const auto& [key, versions] : texts) {
    ASSERT_TRUE(versions.contains("en")) << key.second;
    for (const std::string_view language : languages) {
      ASSERT_TRUE(versions.contains(language)) << key.second << " in " << language;
      EXPECT_EQ(argumentsOf(versions.at(language)), argumentsOf(versions.at("en")))
          << key.second << " in " << language;
    }
  }
}

TEST(StringTables, EveryPluralHasTheCategoriesOfItsLanguage) {
  EXPECT_EQ(categoriesOf("pl"), (Categories{"one", "few", "many", "other"}));
  EXPECT_THAT(pluralsIn("{0, plural, =0 {none} one {#} other {{1, plural, other {#}}}}"),
              UnorderedElementsAre(Categories{"one", "other"}, Categories{"other"}));
  std::size_t plurals = 0;
  for (const TableText& text : embeddedTexts()) {
    for (const Categories& categories : pluralsIn(text.text)) {
      ++plurals;
      EXPECT_EQ(categories, categoriesOf(text.language)) << text.key << " in " << text.language;
    }
  }
  EXPECT_GE(plurals, 10U);
}

TEST(StringTables, ContainEveryTextOfTheWidget) {
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
  IcuLocalization texts(*UserLocale::parse("en"));
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

TEST(StringTables, TheFeedTableMatchesTheBuiltInEnglishTexts) {
  const IcuLocalization texts(*UserLocale::parse("en"));
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

}  // namespace
}  // namespace linewatch

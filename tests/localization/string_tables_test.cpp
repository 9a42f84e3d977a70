#include "localization/string_tables.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <regex>
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

using testing::IsEmpty;
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

/// The tables as one object of texts by language, then by table and key.
using Place = std::pair<std::string_view, std::string_view>;
using Texts = std::map<std::string_view, std::map<Place, std::string_view>>;

Texts byLanguage(const std::vector<TableText>& tables) {
  Texts texts;
  for (const TableText& text : tables) {
    const bool isNew = texts[text.language].emplace(Place(text.table, text.key), text.text).second;
    EXPECT_TRUE(isNew) << text.key << " is twice in " << text.language;
  }
  return texts;
}

std::vector<TableText> everyText() {
  std::vector<std::string_view> languages;
  for (const EmbeddedLanguage& language : embeddedLanguages()) languages.push_back(language.language);
  return embeddedTexts(languages);
}

bool isPattern(std::string_view text) {
  UParseError place;
  UErrorCode error = U_ZERO_ERROR;
  const icu::MessagePattern pattern(unicode(text), &place, error);
  return U_SUCCESS(error) != 0;
}

std::string joined(const Categories& categories) {
  std::string text;
  for (const std::string& category : categories) text += (text.empty() ? "" : " ") + category;
  return text;
}

/// What is wrong with the spelling of a text by itself; empty if nothing is.
std::string typoIn(std::string_view text) {
  const std::pair<std::string_view, const char*> signs[] = {
      {"'", "has an apostrophe that ICU reads as a quote; write ’"},
      {"...", "has three full stops; write …"},
      {"\"", "has a straight quotation mark"},
      {"  ", "has two spaces in a row"}};
  for (const auto& [sign, fault] : signs) {
    if (text.find(sign) != std::string_view::npos) return fault;
  }
  if (text.empty()) return "is empty";
  return text.front() == ' ' || text.back() == ' ' ? "begins or ends with a space" : "";
}

/// What is wrong with a translation of an English text; empty if nothing is.
std::string faultOf(std::string_view language, std::string_view text, std::string_view english) {
  static const std::regex kTwoWords("[a-z]{2} [a-z]{2}", std::regex::icase);
  if (!isPattern(text)) return "is no message pattern";
  if (argumentsOf(text) != argumentsOf(english)) return "has other arguments than in English";
  for (const Categories& categories : pluralsIn(text)) {
    if (const Categories wanted = categoriesOf(language); categories != wanted)
      return "has plural forms for " + joined(categories) + " instead of " + joined(wanted);
  }
  if (language != "en" && text == english && std::regex_search(text.begin(), text.end(), kTwoWords))
    return "is still English";
  return typoIn(text);
}

/// One line for each fault in the tables. The table of a region may leave out texts of its language.
std::vector<std::string> faultsIn(const Texts& texts) {
  const auto& english = texts.at("en");
  std::vector<std::string> faults;
  const auto add = [&](std::string_view language, const Place& place, const std::string& fault) {
    if (!fault.empty())
      faults.push_back(std::string(language) + ' ' + std::string(place.first) + ' ' +
                       std::string(place.second) + ' ' + fault);
  };
  for (const auto& [language, translations] : texts) {
    const bool isPart = texts.contains(language.substr(0, language.find('-'))) &&
                        language.find('-') != std::string_view::npos;
    for (const auto& [place, text] : translations) {
      const auto original = english.find(place);
      add(language, place,
          original == english.end() ? "is not in English" : faultOf(language, text, original->second));
    }
    for (const auto& [place, text] : english) {
      if (!isPart && !translations.contains(place)) add(language, place, "is missing");
    }
  }
  return faults;
}

TEST(StringTables, EveryLanguageHasEveryTextInItsPluralForms) {
  const Texts texts = byLanguage(everyText());
  for (const char* language : {"ar", "cs", "de", "en", "es", "fr", "he", "hi", "it", "ja", "ko", "nl", "pl",
                               "pt", "ru", "uk", "zh-Hans"})
    EXPECT_TRUE(texts.contains(language)) << language;
  EXPECT_THAT(faultsIn(texts), IsEmpty());
}

TEST(StringTables, FaultsInTablesAreNamed) {
  const std::vector<TableText> tables = {
      {"en", "window", "Count", "{0, plural, one {# line of {1}} other {# lines of {1}}}"},
      {"en", "window", "Hello", "Good morning"},
      {"pl", "window", "Count", "{0, plural, one {# linia {1}} other {# linii {1}}}"},
      {"pl", "window", "Gone", "x"},
      {"fr", "window", "Count", "{0} lignes de {1}"},
      {"fr", "window", "Hello", "Bonjour l'ami"},
      {"fr-CA", "window", "Hello", "Bon matin"},
      {"nl", "window", "Count", "{0, plural, one {# lijn"},
      {"nl", "window", "Hello", "Good morning"},
  };
  EXPECT_THAT(
      faultsIn(byLanguage(tables)),
      UnorderedElementsAre("pl window Count has plural forms for one other instead of few many one other",
                           "pl window Gone is not in English", "pl window Hello is missing",
                           "fr window Count has other arguments than in English",
                           "fr window Hello has an apostrophe that ICU reads as a quote; write ’",
                           "nl window Count is no message pattern", "nl window Hello is still English"));
}

TEST(StringTables, TheWidgetsTextsTakeTheArgumentsThatItGives) {
  const std::map<std::string_view, int> counts = {{"LineWatch_GoodService_SecondaryText_Plural", 1},
                                                  {"LineWatch_Summary_advisory_count", 1},
                                                  {"LineWatch_advisory_overflow_title", 1},
                                                  {"LineWatch_AdvisoriesOverflow_SecondaryText", 1},
                                                  {"LineWatch_GoodService_Overflow_SecondaryText", 1},
                                                  {"Transit_Incident_Not_Displayed_Incidents", 1},
                                                  {"LineWatch_Single_Line_Prepended_Incident_Text", 2},
                                                  {"LineWatch_2_Lines_Concatenated", 2},
                                                  {"LineWatch_N_Lines_Names_Concatenated", 2},
                                                  {"LineWatch_2_Lines_Prepended_Incident_Text", 3},
                                                  {"LineWatch_N_Lines_Prepended_Incident_Text", 3}};
  std::size_t found = 0;
  const Texts texts = byLanguage(everyText());
  for (const auto& [place, text] : texts.at("en")) {
    if (place.first != "kestrow" && place.first != "widget") continue;
    std::set<int> numbers, expected;
    for (const auto& [number, type] : argumentsOf(text)) numbers.insert(number);
    const auto count = counts.find(place.second);
    found += count != counts.end() ? 1 : 0;
    for (int number = 0; count != counts.end() && number < count->second; ++number) expected.insert(number);
    EXPECT_EQ(numbers, expected) << place.second;
  }
  EXPECT_EQ(found, counts.size());
}

TEST(StringTables, TheFeedTableMatchesTheBuiltInEnglishTexts) {
  const IcuLocalization texts(*UserLocale::parse("en"));
  std::ptrdiff_t lookedUp = 0;
  const auto lookUp = [&](std::string_view key, std::string_view) {
    ++lookedUp;
    return texts.feedString(key, "missing");
  };
  EXPECT_EQ(FeedTexts::lookedUp(lookUp), FeedTexts::english());
  EXPECT_EQ(lookedUp, std::ranges::count_if(everyText(), [](const TableText& text) {
              return text.language == kFallbackLanguage && text.table == "feed";
            }));
}

}  // namespace
}  // namespace linewatch

#include "localization/user_locale.h"

#include <map>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

using testing::ElementsAre;

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
  const std::map<std::string, std::vector<std::string>> chains = {
      {"de-CH", {"de-CH", "de"}},
      {"zh-Hant-TW", {"zh-Hant-TW", "zh-Hant", "zh"}},
      {"zh_TW", {"zh-TW", "zh-Hant", "zh"}},
      {"zh-Hans-CN", {"zh-Hans-CN", "zh-Hans", "zh"}},
      {"zh_CN.UTF-8", {"zh-CN", "zh-Hans", "zh"}},
      {"zh", {"zh", "zh-Hans"}},
      {"pt-BR", {"pt-BR", "pt"}},
      {"pt-AO", {"pt-AO", "pt-PT", "pt"}},
      {"iw_IL", {"he-IL", "he"}},
      {"no", {"no"}}};
  for (const auto& [text, fallbacks] : chains)
    EXPECT_EQ(UserLocale::parse(text)->fallbacks(), fallbacks) << text;
  EXPECT_EQ(UserLocale::parse("de-CH")->language(), "de");
  EXPECT_TRUE(UserLocale::parse("ar")->isRightToLeft());
  EXPECT_FALSE(UserLocale::parse("de")->isRightToLeft());
}

TEST(UserLocale, HasTheLanguagesOfTheEnvironmentInTheirOrder) {
  const auto environment = [](const char* name) {
    const std::string_view variable(name);
    return variable == "LANGUAGE" ? "gsw:pt_BR:C:en" : variable == "LANG" ? "de_CH.UTF-8" : nullptr;
  };
  const UserLocale locale = UserLocale::fromEnvironment(environment);
  EXPECT_THAT(locale.fallbacks(), ElementsAre("gsw", "pt-BR", "pt", "en", "de-CH", "de"));
  EXPECT_EQ(locale.tagWithFallback("pt"), "pt-BR");
  EXPECT_EQ(locale.tagWithFallback("de"), "de-CH");
  EXPECT_EQ(locale.tagWithFallback("fr"), std::nullopt);
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
      {{{"LANG", "de_CH"}, {"LANGUAGE", "de"}}, "de-CH"},
      {{{"LANG", "de_CH"}, {"LANGUAGE", ":?:fr_CA:en"}}, "fr-CA"},
      {{{"LANG", "C"}, {"LANGUAGE", "fr"}}, "en"},
      {{{"LANG", "?"}}, "en"},
      {{{"LANG", "en_US.UTF-8"}, {"LANGUAGE", "pt_BR:pt:en"}}, "pt-BR"},
      {{{"LANG", "de_CH.UTF-8"}, {"LANGUAGE", "de:fr"}}, "de-CH"},
      {{{"LANG", "de_CH.UTF-8"}, {"LANGUAGE", ":nonsense:"}}, "de-CH"},
      {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, "en"},
      {{{"LANGUAGE", "de"}}, "en"},
  };
  for (const auto& [variables, tag] : rows) {
    const auto environment = [&variables = variables](const char* name) {
      const auto variable = variables.find(name);
      return variable == variables.end() ? nullptr : variable->second.c_str();
    };
    EXPECT_EQ(UserLocale::fromEnvironment(environment).tag(), tag);
  }
  const auto list = [](const char* name) { return std::string(name) == "LANGUAGE" ? "sv:fr:en" : "fr_CH"; };
  const UserLocale swedish = UserLocale::fromEnvironment(list);
  EXPECT_THAT(swedish.fallbacks(), ElementsAre("sv", "fr-CH", "fr", "en"));
  EXPECT_EQ(swedish.tagWithFallback("fr"), "fr-CH");
  EXPECT_EQ(swedish.tagWithFallback("de"), std::nullopt);
}

}  // namespace
}  // namespace linewatch

#include "feeds/alerts/translation_choice.h"

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(Translations, ComeInTheOrderInWhichTheyFit) {
  struct Row {
    const char* name;
    std::vector<std::string> user;
    const char* feed;
    std::vector<std::string_view> tags;
    std::string_view best;
  };
  for (const Row& row : {
           Row{"exact tag", {"de-CH"}, "", {"en", "de", "de-CH"}, "de-CH"},
           Row{"the language without the country", {"de-CH"}, "", {"en", "de-AT", "de"}, "de"},
           Row{"the language with another country", {"de-CH"}, "en", {"en", "de-AT"}, "de-AT"},
           Row{"a longer tag", {"de"}, "", {"en", "de-AT"}, "de-AT"},
           Row{"more in common", {"zh-Hant-TW"}, "", {"zh", "zh-Hans", "zh-Hant"}, "zh-Hant"},
           Row{"the script of the country", {"zh-TW"}, "", {"zh-Hans", "zh-Hant"}, "zh-Hant"},
           Row{"the country of the script", {"zh-Hans"}, "", {"zh-HK", "zh-CN"}, "zh-CN"},
           Row{"spelt otherwise", {"pt_br"}, "", {"pt-PT", "PT-BR"}, "PT-BR"},
           Row{"no language of its first letters", {"de"}, "", {"den", "d", "fr"}, "den"},
           Row{"the better liked language", {"fr-CA", "en"}, "", {"en", "fr"}, "fr"},
           Row{"the second language", {"it", "en"}, "de", {"de", "", "en"}, "en"},
           Row{"the feed's own", {"it"}, "de-CH", {"", "en", "de"}, "de"},
           Row{"untagged", {"it"}, "rm", {"en", ""}, ""},
           Row{"the first", {"it"}, "rm", {"en", "de"}, "en"},
       }) {
    std::vector<AlertTranslation> translations;
    for (const std::string_view tag : row.tags) translations.push_back({.text = "text", .language = tag});
    EXPECT_EQ(translationsByFit(translations, row.user, row.feed).front().language, row.best) << row.name;
  }
}

}  // namespace
}  // namespace linewatch

#include "app/rider_texts.h"

#include <gtest/gtest.h>

namespace linewatch::app {
namespace {

using Phrase = RiderTexts::Phrase;

RiderTexts textsIn(std::string_view tag) { return RiderTexts(*UserLocale::parse(tag)); }

TEST(RiderTexts, CountsTheAgeInTheLargestUnit) {
  const struct {
    const char* tag;
    Seconds age;
    const char* text;
  } rows[] = {{"en", Seconds(-5), "less than a minute ago"},
              {"en", Seconds(119), "a minute ago"},
              {"de", Seconds(7200), "vor 2 Stunden"},
              {"pl", Seconds(300), "5 minut temu"},
              {"cs", Seconds(172800), "před 2 dny"},
              {"ar", Seconds(172800), "قبل يومين"},
              {"ja", Seconds(60), "1分前"},
              {"sv", Seconds(7200), "2 hours ago"}};
  for (const auto& row : rows) EXPECT_EQ(textsIn(row.tag).ago(row.age), row.text) << row.tag;
}

TEST(RiderTexts, ArgumentsAreSafeOnATerminalAndKeepTheirDirection) {
  const std::string name = "7\x1b[31m\u202E";
  EXPECT_EQ(textsIn("de")("UnknownLines", {name}), "Unbekannte Linien: 7 [31m ");
  EXPECT_EQ(textsIn("ar")("UnknownLines", {name}), "خطوط غير معروفة: \u20687 [31m \u2069");
  // A phrase is not cleaned again, so it keeps its isolates.
  const RiderTexts arabic = textsIn("ar");
  EXPECT_EQ(arabic("OfFeed", {"M", Phrase{arabic("NoAlertsYet", {"x"})}}),
            "\u2068M\u2069: لا تنبيهات حتى الآن: \u2068x\u2069");
}

TEST(RiderTexts, GivesReasonsOfFailuresInTheUsersLanguage) {
  const FailureCode code = FailureCode::unreachable;
  EXPECT_EQ(textsIn("en").failure(code, "no route to host"), "no route to host");
  EXPECT_EQ(textsIn("de").failure(code, "no route to host"), "keine Verbindung (no route to host)");
  EXPECT_EQ(textsIn("de").failure(FailureCode::other, "odd"), "odd");
}

TEST(RiderTexts, WritesDatesAndListsInTheLanguageOfTheTexts) {
  const Date noon = Date(Seconds(1'795'521'600)), nextDay = noon + Seconds(86400);
  const std::vector<std::string> names{"A", "B", "C"};
  EXPECT_EQ(textsIn("de-CH").dateAndTime(nextDay, noon).substr(0, 8), "25.11.26");
  EXPECT_EQ(textsIn("de-CH").dateAndTime(noon, noon).find('.'), std::string::npos);
  // There are no Swedish texts, so dates beside the English texts are English.
  EXPECT_EQ(textsIn("sv-SE").dateAndTime(nextDay, noon), textsIn("en-SE").dateAndTime(nextDay, noon));
  EXPECT_EQ(textsIn("zh-CN").list(names), "A、B、C");
}

}  // namespace
}  // namespace linewatch::app

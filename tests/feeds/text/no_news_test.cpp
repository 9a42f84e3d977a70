#include "feeds/text/no_news.h"

#include <gtest/gtest.h>

#include "feeds/text/comparable_words.h"

namespace linewatch {
namespace {

TEST(NoNews, PreamblesGo) {
  struct Row {
    const char* text;
    const char* rest;
  };
  for (const Row& row : {
           Row{"Sehr geehrte Fahrgäste, wegen Bauarbeiten", "wegen Bauarbeiten"},
           Row{"Sehr geehrte Damen und Herren,", ""},
           Row{"Liebe Fahrgäste! Die Linie 5", "Die Linie 5"},
           Row{"Dear passengers, line 5", "line 5"},
           Row{"Attention riders: use bus 5", "use bus 5"},
           Row{"Chers voyageurs, la ligne 5", "la ligne 5"},
           Row{"Mesdames, Messieurs, la ligne 5", "la ligne 5"},
           Row{"Hello riders! Line 5", "Line 5"},
           Row{"Dear riders, please note that line 5 is late", "line 5 is late"},
           Row{"Informamos que, no dia 5, a linha", "no dia 5, a linha"},
           Row{"Please note the change", "Please note the change"},
           Row{"Dear Street is closed, use bus 5", "Dear Street is closed, use bus 5"},
           Row{"Attention: customers wait", "Attention: customers wait"},
           Row{"Fahrgäste, die Linie 5", "Fahrgäste, die Linie 5"},
       }) {
    EXPECT_EQ(withoutPreamble(row.text), row.rest) << row.text;
  }
}

TEST(NoNews, HeadingsDirectionsLinesMapsAndThanks) {
  for (const char* text : {"Change.",
                           "Reason",
                           "What's happening?",
                           "What’s happening?",
                           "Grund:",
                           "Was ändert sich?",
                           "Motif :",
                           "Que se passe-t-il ?",
                           "Affected direction: Eastbound",
                           "Betroffene Richtung: Zoo",
                           "Sens concerné : Port",
                           "Affected routes: 215, 225, CT2",
                           "Affected lines: Ring, Green Line",
                           "See a map of this change.",
                           "Siehe Karte der Umleitung",
                           "Voir le plan",
                           "Vielen Dank für Ihr Verständnis!",
                           "We apologise for the delay.",
                           "Merci de votre compréhension.",
                           "(Update 1: new dates)",
                           "- - -",
                           ""}) {
    EXPECT_TRUE(isNoNews(text)) << text;
  }
  for (const char* text :
       {"Change at the pier.", "Reason: strike", "No trains",
        "Affected direction: Eastbound to the Zoo and the pier", "Affected route: 5 to the Zoo",
        "Affected stops: Zoo", "See the staff at the pier", "(Line 5 only)", "停電です。"}) {
    EXPECT_FALSE(isNoNews(text)) << text;
  }
}

TEST(NoNews, UpdateNotesGo) {
  EXPECT_EQ(withoutUpdateNote("Erneute Terminänderung: Nur noch bis Mai"), "Nur noch bis Mai");
  EXPECT_EQ(withoutUpdateNote("Update 3/5, line 5"), "line 5");
  EXPECT_EQ(withoutUpdateNote("Update Street is closed"), "Update Street is closed");
  EXPECT_EQ(withoutUpdateNote("(Update 1: new dates)"), "(Update 1: new dates)");
}

TEST(NoNews, ChangeHeadingsStandOnTheirOwnLine) {
  EXPECT_EQ(underChangeHeading("Plans took effect.\n\nChange:\nFewer trips."), "Fewer trips.");
  EXPECT_EQ(underChangeHeading("Change of plans\nFewer trips."), "");
  EXPECT_TRUE(isReasonHeading("Grund:"));
  EXPECT_FALSE(isReasonHeading("Grund: Bau"));
}

TEST(NoNews, FieldsThatSayWhatIsKnownGo) {
  const std::string known = comparableWords("Route 5 detour at Long Street for works");
  EXPECT_EQ(withoutKnownFields("Notice: Route: 5 Location: Long Street Cause: works", known), "");
  EXPECT_EQ(withoutKnownFields("Route: 5, Location: Pier, Cause: works", known),
            "Location: Pier, Cause: works");
  EXPECT_EQ(withoutKnownFields("Stops: Pier", known), "Stops: Pier");
  EXPECT_EQ(withoutKnownFields("Use bus 7: Route 5", known), "Use bus 7: Route 5");
}

TEST(NoNews, FirstLettersAreCapitals) {
  EXPECT_EQ(capitalized("wegen Bau"), "Wegen Bau");
  EXPECT_EQ(capitalized("über Land"), "Über Land");
  EXPECT_EQ(capitalized("iBus stops"), "iBus stops");
  EXPECT_EQ(capitalized("17 south"), "17 south");
  EXPECT_EQ(capitalized("www.example.org"), "www.example.org");
  EXPECT_EQ(capitalized(""), "");
}

}  // namespace
}  // namespace linewatch

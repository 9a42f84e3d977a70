#include "feeds/text/joined_lines.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

using testing::ElementsAre;

std::vector<std::string> linesOf(std::string_view text, std::string_view language = "en") {
  std::vector<std::string> all;
  forEachJoinedLine(text, language, [&all](std::string_view line) {
    all.emplace_back(line);
    return true;
  });
  return all;
}

TEST(JoinedLines, LinesThatStandAloneStay) {
  EXPECT_THAT(linesOf("Detour in force\nStop A is closed\n\nUse stop B."),
              ElementsAre("Detour in force", "Stop A is closed", "Use stop B."));
  EXPECT_THAT(linesOf("Die Linie 5 fällt aus\nErsatzverkehr fährt", "de"),
              ElementsAre("Die Linie 5 fällt aus", "Ersatzverkehr fährt"));
  EXPECT_THAT(linesOf("**********\nNo trains\n- - -"), ElementsAre("No trains"));
  EXPECT_THAT(linesOf(""), ElementsAre());
}

TEST(JoinedLines, ListsBelowAColonAreOneLine) {
  EXPECT_THAT(linesOf("Affected direction: Inbound\n\nStops:\nMain St\nElm St\n\nExpect delays."),
              ElementsAre("Affected direction: Inbound", "Stops: Main St, Elm St", "Expect delays."));
  EXPECT_THAT(linesOf("To the pier:\nClosed: Zoo\nPark\nInstead: Mill"),
              ElementsAre("To the pier: Closed: Zoo, Park; Instead: Mill"));
  EXPECT_THAT(linesOf("The way:\n\nMain St\nElm St"), ElementsAre("The way: Main St, Elm St"));
  EXPECT_THAT(linesOf("Note:\n\nMain St is closed.\nUse Elm St."),
              ElementsAre("Note: Main St is closed.", "Use Elm St."));
}

TEST(JoinedLines, BulletsOfAllKindsMakeAList) {
  for (const std::string bullet :
       {"• ", "∙ ", "∙", "‣ ", "▪ ", "●", "◦ ", "⁃ ", "➢ ", "\uF0B7", "- ", "– ", "* ", "· "}) {
    EXPECT_THAT(linesOf("Closed:\n" + bullet + "Zoo\n" + bullet + "Park\n\nSorry"),
                ElementsAre("Closed: Zoo, Park", "Sorry"))
        << bullet;
  }
  EXPECT_THAT(linesOf("Closed:\n• Zoo\n• Park.\n• Bridge"), ElementsAre("Closed: Zoo, Park.", "Bridge"));
  EXPECT_THAT(linesOf("Closed: ∙ Zoo ∙ Park"), ElementsAre("Closed: Zoo, Park"));
  EXPECT_THAT(linesOf("• Zoo • Park"), ElementsAre("Zoo, Park"));
  EXPECT_THAT(linesOf("Line 5 • Line 7"), ElementsAre("Line 5 • Line 7")) << "no list";
}

TEST(JoinedLines, WrappedLinesGoOn) {
  struct Row {
    const char* name;
    const char* language;
    const char* text;
    std::vector<std::string> lines;
  };
  for (const Row& row : {
           Row{"lower case",
               "en",
               "Trams run between the\nmarket and the pier",
               {"Trams run between the market and the pier"}},
           Row{"lower case, in paragraphs",
               "de",
               "An der Haltestelle Markt\n\nab Montag\n\nkein Halt.",
               {"An der Haltestelle Markt ab Montag kein Halt."}},
           Row{"lower case behind a full stop, in paragraphs",
               "en",
               "Closed.\n\nuse bus 5",
               {"Closed.", "use bus 5"}},
           Row{"article",
               "en",
               "It runs along the Long Street – Street of the\nWeavers",
               {"It runs along the Long Street – Street of the Weavers"}},
           Row{"preposition",
               "fr",
               "La ligne 4 est déviée entre\nGare et Mairie.",
               {"La ligne 4 est déviée entre Gare et Mairie."}},
           Row{"noun before a name",
               "de",
               "Ab Montag kann die Haltestelle\nAm Markt nicht bedient werden.",
               {"Ab Montag kann die Haltestelle Am Markt nicht bedient werden."}},
           Row{"direction",
               "de",
               "Kein Halt am Markt\nFahrtrichtung Zoo.",
               {"Kein Halt am Markt Fahrtrichtung Zoo."}},
           Row{"German noun at the wrap",
               "de",
               "Wegen Bauarbeiten fahren die Busse der Linie 5 zwischen Markt und neuem\nBahnhof eine "
               "Umleitung.",
               {"Wegen Bauarbeiten fahren die Busse der Linie 5 zwischen Markt und neuem Bahnhof eine "
                "Umleitung."}},
           Row{"German sentence at the wrap",
               "de",
               "Die Haltestelle Markt ist wegen Bauarbeiten in der Langen Straße verlegt\nBitte steigen Sie "
               "am Zoo ein.",
               {"Die Haltestelle Markt ist wegen Bauarbeiten in der Langen Straße verlegt",
                "Bitte steigen Sie am Zoo ein."}},
           Row{"English name at the wrap of two full lines",
               "en",
               "Until Friday the buses of line 5 take another way between the market and\nHarbour Street, "
               "and do not stop at the four stops between the old pier and\nLong Street.",
               {"Until Friday the buses of line 5 take another way between the market and Harbour Street, "
                "and do not stop at the four stops between the old pier and Long Street."}},
           Row{"English title of the same length",
               "en",
               "Detour of line 5 between the market and the old pier is complete\nHarbour Street is open",
               {"Detour of line 5 between the market and the old pier is complete",
                "Harbour Street is open"}},
           Row{"room for the next word",
               "de",
               "Wegen Bauarbeiten fahren die Busse der Linie 5 zwischen Markt und Zoo eine Umleitung.\nKein "
               "Halt am Zoo und an der Brücke sowie am Markt in der Altstadt\nErsatz am See",
               {"Wegen Bauarbeiten fahren die Busse der Linie 5 zwischen Markt und Zoo eine Umleitung.",
                "Kein Halt am Zoo und an der Brücke sowie am Markt in der Altstadt", "Ersatz am See"}},
       }) {
    EXPECT_EQ(linesOf(row.text, row.language), row.lines) << row.name;
  }
}

}  // namespace
}  // namespace linewatch

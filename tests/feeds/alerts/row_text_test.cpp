#include "feeds/alerts/row_text.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/text/plain_text.h"
#include "feeds/text/utf8.h"

namespace linewatch {
namespace {

std::string secondaryText(std::string_view description, std::string_view title) {
  return rowSecondaryText(description, title, "en");
}

TEST(RowText, TitleIsTheHeaderOnOneLine) {
  struct Row {
    const char* header;
    const char* title;
  };
  for (const Row& row : {
           Row{"Route 5:\nMain St\nElm St", "Route 5: Main St, Elm St"},
           Row{"Works begin at 12:51 PM\nTesting", "Works begin at 12:51 PM. Testing"},
           Row{"Route 5 detour at\nMain Street", "Route 5 detour at Main Street"},
           Row{"Dear passengers,\nLine 5 is late", "Line 5 is late"},
           Row{"Dear passengers", "Dear passengers"},
           Row{"Line 5 is late. Check at https://example.org", "Line 5 is late."},
           Row{"https://example.org", "https://example.org"},
           Row{"elevator out of service", "Elevator out of service"},
           Row{"Works - ", "Works"},
           Row{"Stop moved – :", "Stop moved"},
           Row{"", ""},
       }) {
    EXPECT_EQ(rowTitle(row.header, "en"), row.title) << row.header;
  }
}

struct SecondaryRow {
  const char* title;
  const char* description;
  const char* text;
};

void expectSecondaryTexts(std::initializer_list<SecondaryRow> rows) {
  for (const SecondaryRow& row : rows) {
    EXPECT_EQ(secondaryText(row.description, row.title), row.text) << row.description;
  }
}

TEST(RowText, SecondaryTextSaysSomethingNew) {
  expectSecondaryTexts({
      {"Works", "Buses run instead.", "Buses run instead."},
      {"Zoo - Park: Signal failure.", "Signal failure.\n\nDelayed trains.", "Delayed trains."},
      {"No service on line 5", "NO SERVICE ON LINE 5!", ""},
      {"Works", "Works. Works? Works", ""},
      {"Line 5", "Listen. Listen. Wait.", "Listen. Wait."},
      {"Line 5", "Stop closed\n\nUse stop B", "Stop closed. Use stop B"},
      {"Line 5", "Follow the way in the picture:", "Follow the way in the picture"},
      {"Line 5", "More at https://example.org/. Use bus 7.", "Use bus 7."},
      {"Line 5", "Infos: www.example.org. Use bus 7.", "Use bus 7."},
      {"Line 5", "停電です。バスをご利用ください。", "停電です。バスをご利用ください。"},
      {"Stop moved", "Affected routes: 215, 225, CT2. Use the stop across.", "Use the stop across."},
      {"Stop moved", "Affected route: 5 to Zoo", "Affected route: 5 to Zoo"},
      {"Change at Harbour", "Affected stations: Harbour. Use the stairs.", "Use the stairs."},
      {"No stop at Harbour", "Other stops: Harbour", "Other stops: Harbour"},
      {"Line 5", "", ""},
      {"Line 5", "- - -", ""},
  });
}

TEST(RowText, TitleIsNotSaidTwice) {
  expectSecondaryTexts({
      {"Route 5 detour", "Route 5 detour - Use stop 12", "Use stop 12"},
      {"Route 5 detour", "Route 5 detour: use stop 12", "Use stop 12"},
      {"Route 5 detour", "ROUTE 5 DETOUR\nUse stop 12", "Use stop 12"},
      {"Route 5 detour", "Route 5 detour! Route 5 detour! Use stop 12", "Use stop 12"},
      {"The detour of line 5 is complete", "The detour of line 5 is complete Where: Long Street",
       "Where: Long Street"},
      // The first line, between 60 and 90 characters long, is no wrapped line.
      {"The detour of line 5 between the market and the harbour is complete",
       "The detour of line 5 between the market and the harbour is complete\nWhere: Long Street",
       "Where: Long Street"},
      {"Lines 2 and 4: works at the pier", "Lines 2 and 4: stop A is closed.", "Stop A is closed."},
      {"Line 5: works in Long Street", "Update 3/5, line 5, works in Long Street, detour until Friday.",
       "Detour until Friday."},
      {"MAJ L 5 detour, end of works", "MAJ Line 5 detour, end of works, back to normal", "Back to normal"},
      {"Ligne 5 travaux à compter 3 mai", "Ligne 5 travaux à compter du 3 mai: arrêt déplacé",
       "Arrêt déplacé"},
      {"Detour", "Detour between Pier and Zoo", "Between Pier and Zoo"},
      {"Detour", "DETOUR 17 North - Long Street is closed", "17 North - Long Street is closed"},
      {"Line 5 detour in both directions from May", "Line 5 detour in both directions from May for works",
       "For works"},
  });
}

TEST(RowText, WhatBelongsToTheTitlesWordsStays) {
  expectSecondaryTexts({
      {"Route 5 detour", "Route 5 detour until Friday", "Route 5 detour until Friday"},
      {"Line 5", "Line 5, 7 and 9 do not run.", "Line 5, 7 and 9 do not run."},
      {"Line 5", "Line 5-7 do not run.", "Line 5-7 do not run."},
      {"Line 5", "Line 55 does not run.", "Line 55 does not run."},
      {"Line 5", "Line 5\ndoes not run.", "Line 5 does not run."},
      {"Detour", "Detour of line 5", "Detour of line 5"},
      {"Stop A moved", "Stop A not moved: use stop B", "Stop A not moved: use stop B"},
      {"Works 3", "Works 3 - 7 May on line 5.", "Works 3 - 7 May on line 5."},
      {"Lines 5 and 7: detour", "Line 5: use stop A. Line 7: use stop B.",
       "Line 5: use stop A. Line 7: use stop B."},
      {"No stop at Long Street, Pier", "Long Street, Pier, Zoo and Market are closed.",
       "Long Street, Pier, Zoo and Market are closed."},
  });
}

TEST(RowText, HeadingsSalutationsAndFieldsAreNoNews) {
  expectSecondaryTexts({
      {"Route 5 notice", "Change\n\nFewer trips at night.\n\nReason\n\nFewer drivers.",
       "Fewer trips at night. Reason: Fewer drivers."},
      {"Route 5 notice", "Our changes take effect on Sunday.\nChange\nFewer trips.", "Fewer trips."},
      {"Route 5 notice", "Fewer trips.\nChange\n\nReason", "Fewer trips."},
      {"Route 5 detour", "What's happening?\nThe bridge is closed.\nSee a map of this change.",
       "The bridge is closed."},
      {"Route 5 detour", "Affected direction: Eastbound\n\nAffected stops:\nPier\nZoo",
       "Affected stops: Pier, Zoo"},
      {"Route 5 detour", "Affected direction: Eastbound", ""},
      {"Halt verlegt", "Sehr geehrte Fahrgäste,\n\nwegen Bauarbeiten kein Halt.",
       "Wegen Bauarbeiten kein Halt."},
      {"Halt verlegt", "Sehr geehrte Fahrgäste\n\nKein Halt bis Mai.\n\nVielen Dank!", "Kein Halt bis Mai."},
      {"Arrêt déplacé", "Chers voyageurs, l'arrêt ferme.\n\nMotif :\nTravaux",
       "L'arrêt ferme. Motif : Travaux"},
      {"Route 5: detour at Pier for works", "Notice: Route: 5 Location: Pier Cause: works. Use stop A.",
       "Use stop A."},
  });
}

TEST(RowText, TakesAsManySentencesAsReadWell) {
  const std::string thirty = "Thirty characters stand here. ";
  const std::string ninety(90, 'X');
  EXPECT_EQ(secondaryText("One. Two. Three.", ""), "One. Two. Three.");
  EXPECT_EQ(secondaryText(thirty + ninety + ". More.", ""), thirty + ninety + ".")
      << "so little alone says next to nothing";
  const std::string fifty = "The fifty characters that stand here are a sentence.";
  const std::string both = fifty + " Another fifty characters stand here in a sentence.";
  EXPECT_EQ(secondaryText(both, ""), both);
  EXPECT_EQ(secondaryText(fifty + " " + ninety + ".", ""), fifty) << "a row has no room for both";
  EXPECT_EQ(secondaryText("Short. " + std::string(250, 'Y') + ". Last.", ""), "Short.");
  EXPECT_EQ(secondaryText(std::string(250, 'Y') + ".", ""), std::string(250, 'Y') + ".");

  std::string endless;
  for (int word = 0; word < 200; ++word) endless += "wörter ";
  const std::string cut = secondaryText(endless, "");
  EXPECT_THAT(cut, testing::EndsWith("wörter…"));
  std::string endlessList;
  for (int item = 0; item < 60; ++item) endlessList += "Long Street, ";
  EXPECT_THAT(secondaryText(endlessList, ""), testing::EndsWith("Long Street…"));
  EXPECT_LE(countCharacters(cut), 400U);
  EXPECT_TRUE(isValidUtf8(rowTitle(std::string(500, 'x') + "ö", "de")));
}

TEST(RowText, TakesTimeInProportion) {
  // Each of these tempts a reader to look at all that follows for every piece: the test would not end.
  for (const char* piece :
       {"<b",       "<b ",    "<!--",    "&",       "&lt;b",  "<script>", "a. ",
        "A. ",      "A! ",    "a ",      "\n\n",    "(",      ".",        "a:\n",
        "- \n",     "title ", "title: ", "cause: ", "www.a ", "a, ",      "x www.a b c d ",
        "Update 1 "}) {
    std::string hostile;
    while (hostile.size() < 50'000) hostile += piece;
    const std::string text = plainText(hostile);
    EXPECT_LE(countCharacters(rowTitle(text, "en")), 400U);
    EXPECT_LE(countCharacters(secondaryText(text, "title")), 400U);
  }
}

TEST(RowText, TitlesThatOnlyNameALine) {
  EXPECT_TRUE(onlyNamesLine("17 Harbour Street", "17", "Harbour Street"));
  EXPECT_TRUE(onlyNamesLine("Route 17 - HARBOUR STREET", "17", "Harbour Street"));
  EXPECT_TRUE(onlyNamesLine("Linie 17", "17", ""));
  EXPECT_TRUE(onlyNamesLine("17", "17", ""));
  EXPECT_FALSE(onlyNamesLine("17 Harbour Street closed", "17", "Harbour Street"));
  EXPECT_FALSE(onlyNamesLine("170", "17", "Harbour Street"));
  EXPECT_FALSE(onlyNamesLine("IR 36", "IR 36", "")) << "so riders call the train";
  EXPECT_FALSE(onlyNamesLine("Bus", "17", ""));
  EXPECT_FALSE(onlyNamesLine("", "17", ""));
}

}  // namespace
}  // namespace linewatch

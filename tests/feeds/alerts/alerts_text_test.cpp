#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/row_text.h"
#include "feeds/alerts/translation_choice.h"
#include "feeds/text/markup.h"
#include "feeds/text/plain_text.h"
#include "feeds/text/sentences.h"
#include "feeds/text/utf8.h"

namespace linewatch {
namespace {

using testing::ElementsAre;

TEST(PlainText, UndoesMarkup) {
  struct Row {
    const char* markup;
    const char* text;
  };
  for (const Row& row : {
           Row{"No trains", "No trains"},
           Row{"<b>No</b> <span class=\"x\">trains</span>", "No trains"},
           Row{"<p>One</p><p>Two<br>Three</p>", "One\n\nTwo\nThree"},
           Row{"One<br />\r\n<br />\r\nTwo", "One\n\nTwo"},
           Row{"Stops:<ul><li>A</li>\n<li>B</li></ul>", "Stops:\n• A\n• B"},
           Row{"<table><tr><td>5</td><td>Zoo</td></tr><tr><td>6</td></tr></table>", "5 Zoo\n6"},
           Row{"<style>p { color: red }</style>Now<script>alert('<b>')</script>!", "Now!"},
           Row{"a<!-- <b>hidden</b> -->b", "ab"},
           Row{"Caf&eacute; &amp; Bar&nbsp;&#8211; 5&#x2019;&#150;", "Café & Bar – 5’–"},
           Row{"Works.&lt;br /&gt;Buses.", "Works.\nBuses."},
           Row{"D&amp;eacute;viation", "Déviation"},
           Row{"&#0;&#xD800;&#x110000;", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
           // What only looks like markup stays.
           Row{"< 5 min, <5 min, 3 > 2", "< 5 min, <5 min, 3 > 2"},
           Row{"Use <Stop A> & R&D; &c.; &unknown; &#; &#x;", "Use <Stop A> & R&D; &c.; &unknown; &#; &#x;"},
           Row{"delay <b", "delay <b"},
           Row{"a <!-- b", "a <!-- b"},
           Row{"?a=1&copy=2&amp", "?a=1&copy=2&amp"},
           Row{"&lt;5 min", "<5 min"},
       }) {
    EXPECT_EQ(plainText(row.markup), row.text) << row.markup;
  }
}

TEST(PlainText, FoldsWhiteSpaceAndDropsWhatIsNotSeen) {
  struct Row {
    const char* name;
    std::string written;
    std::string text;
  };
  for (const Row& row : {
           Row{"spaces", "  a \t b\xC2\xA0\xE2\x80\xAF\xE3\x80\x80 c ", "a b c"},
           Row{"lines", "a \r\n b\rc\n\n\n\nd\n", "a\nb\nc\n\nd"},
           Row{"Unicode's own line ends",
               "a\xE2\x80\xA8"
               "b\xE2\x80\xA9"
               "c\xC2\x85"
               "d",
               "a\nb\n\nc\nd"},
           Row{"control characters",
               std::string("a\0\x01\x7F\xC2\x9B"
                           "b\x0B"
                           "c",
                           9),
               "ab\nc"},
           Row{"direction overrides and isolates",
               "\xE2\x80\xAE"
               "abc\xE2\x80\xAC\xE2\x81\xA7"
               "d\xE2\x81\xA9",
               "abcd"},
           Row{"overrides by number", "&#x202E;abc", "abc"},
           Row{"no UTF-8", "a\xFF\xC3(\xE2\x82", "a\xEF\xBF\xBD\xEF\xBF\xBD(\xEF\xBF\xBD"},
           Row{"byte order mark", "\xEF\xBB\xBFworks", "works"},
           Row{"marks that writing needs", "\xD7\x90\xE2\x80\x8F!", "\xD7\x90\xE2\x80\x8F!"},
           Row{"nothing", " \r\n <br> <p></p>", ""},
       }) {
    EXPECT_EQ(plainText(row.written), row.text) << row.name;
  }
}

TEST(PlainText, TakesTimeInProportion) {
  // Each of these tempts a reader to look at all that follows for every piece: the test would not end.
  for (const char* piece :
       {"<b", "<b ", "<!--", "&", "&lt;b", "<script>", "a. ", "a ", "\n\n", "(", ".", "a:\n", "- \n"}) {
    std::string hostile;
    while (hostile.size() < 100'000) hostile += piece;
    const std::string text = plainText(hostile);
    EXPECT_LE(countCharacters(rowTitle(text)), 400U);
    EXPECT_LE(countCharacters(rowSecondaryText(text, "title")), 400U);
  }
}

TEST(WebAddress, IsOnlyWhatMayBeOpened) {
  const auto address = [](const char* written) { return webAddress(written).value_or("none"); };
  EXPECT_EQ(address(" https://example.org/a?b=1&amp;c=2 "), "https://example.org/a?b=1&c=2");
  EXPECT_EQ(address("HTTP://example.org"), "HTTP://example.org");
  EXPECT_EQ(address("www.example.org/x"), "https://www.example.org/x");
  for (const char* none :
       {"", "https://", "javascript:alert(1)", "file:///etc/passwd", "see the page", "https://a b"}) {
    EXPECT_EQ(address(none), "none") << none;
  }
}

std::vector<std::string> sentencesOf(std::string_view text) {
  std::vector<std::string> all;
  forEachSentence(text, [&all](std::string_view sentence) {
    all.emplace_back(sentence);
    return true;
  });
  return all;
}

TEST(Sentences, EndWhereASentenceEnds) {
  EXPECT_THAT(sentencesOf("No trains. Use bus 5! Why? (A fault.) Sorry…"),
              ElementsAre("No trains.", "Use bus 5!", "Why?", "(A fault.)", "Sorry…"));
  EXPECT_THAT(sentencesOf("停電です。バスをご利用ください。"),
              ElementsAre("停電です。", "バスをご利用ください。"));
  for (const char* whole : {
           "Closed until Mon. 4 Dec. and on Tue. Wed.",
           "Trains skip Montgomery St. Station and Main Ave. North.",
           "Stop No. 1234 at Ft. Point is closed.",
           "Verkehrt z.B. Mo. bis Fr. ab Str. des 17. Juni, ca. Nr. 5.",
           "Ab 27. Oktober bis 3. Jan. geschlossen.",
           "From 5 p.m. Monday, J. F. Kennedy station is closed.",
           "Version 2.5 is used at 10.30 on www.example.org.",
           "Wait... then board.",
           "Gesperrt bis voraussichtl. Dienstag, Bahnhofstr. 5.",
       }) {
    EXPECT_THAT(sentencesOf(whole), ElementsAre(whole));
  }
}

TEST(Sentences, LinesGoTogetherWhereTheyBelongTogether) {
  EXPECT_THAT(sentencesOf("Detour in force\nStop A is closed\n\nUse stop B."),
              ElementsAre("Detour in force", "Stop A is closed", "Use stop B."));
  EXPECT_THAT(sentencesOf("Die Linie 5 fällt aus\nErsatzverkehr fährt"),
              ElementsAre("Die Linie 5 fällt aus", "Ersatzverkehr fährt"));
  EXPECT_THAT(sentencesOf("Affected direction: Inbound\n\nStops:\nMain St\nElm St\n\nExpect delays."),
              ElementsAre("Affected direction: Inbound", "Stops: Main St, Elm St", "Expect delays."));
  EXPECT_THAT(
      sentencesOf("The tram runs another way between the market and\nthe station, because of works.\nSorry."),
      ElementsAre("The tram runs another way between the market and the station, because of works.",
                  "Sorry."));
  EXPECT_THAT(sentencesOf("It runs along the Long Street of the Lower Town – Street of the\nWeavers – Zoo."),
              ElementsAre("It runs along the Long Street of the Lower Town – Street of the Weavers – Zoo."));
  EXPECT_THAT(sentencesOf("Closed:\n• Zoo\n• Park.\n• Bridge"), ElementsAre("Closed: Zoo, Park.", "Bridge"));
  EXPECT_THAT(sentencesOf("The way:\n\nMain St"), ElementsAre("The way: Main St"));
  EXPECT_THAT(sentencesOf(""), ElementsAre());
}

TEST(RowText, TitleIsTheHeaderOnOneLine) {
  EXPECT_EQ(rowTitle("Route 5:\nMain St\nElm St"), "Route 5: Main St, Elm St");
  EXPECT_EQ(rowTitle("Works begin at 12:51 PM\nTesting"), "Works begin at 12:51 PM. Testing");
  EXPECT_EQ(rowTitle("Route 5 detour at\nMain Street"), "Route 5 detour at Main Street");
  EXPECT_EQ(rowTitle("Dear passengers,\nLine 5 is late"), "Dear passengers, Line 5 is late");
  EXPECT_EQ(rowTitle("Works - "), "Works");
  EXPECT_EQ(rowTitle("Stop moved – :"), "Stop moved");
  EXPECT_EQ(rowTitle(""), "");
}

TEST(RowText, SecondaryTextSaysSomethingNew) {
  struct Row {
    const char* title;
    const char* description;
    const char* text;
  };
  for (const Row& row : {
           Row{"Works", "Buses run instead.", "Buses run instead."},
           Row{"Zoo - Park: Signal failure.", "Signal failure.\n\nDelayed trains.", "Delayed trains."},
           Row{"No service on line 5", "NO SERVICE ON LINE 5!", ""},
           Row{"Works", "Works. Works? Works", ""},
           Row{"Route 5 detour", "Route 5 detour - Use stop 12", "Use stop 12"},
           Row{"Route 5 detour", "Route 5 detour: use stop 12", "use stop 12"},
           Row{"Route 5 detour", "Route 5 detour until Friday", "Route 5 detour until Friday"},
           // What follows belongs to what the title says.
           Row{"Line 5", "Line 5, 7 and 9 do not run.", "Line 5, 7 and 9 do not run."},
           Row{"Line 5", "Line 5-7 do not run.", "Line 5-7 do not run."},
           Row{"Works 3", "Works 3 - 7 May on line 5.", "Works 3 - 7 May on line 5."},
           Row{"Line 5", "Listen. Listen. Wait.", "Listen. Wait."},
           Row{"Line 5", "Stop closed\n\nUse stop B", "Stop closed. Use stop B"},
           Row{"Line 5", "Follow the way in the picture:", "Follow the way in the picture"},
           Row{"Line 5", "More at https://example.org/. Use bus 7.", "Use bus 7."},
           Row{"Line 5", "See www.example.org for more", ""},
           Row{"Line 5", "For more on this detour, visit https://example.org.", ""},
           Row{"Line 5", "Infos: www.example.org. Use bus 7.", "Use bus 7."},
           Row{"Line 5", "Buses run instead until Friday, see https://example.org for stops.",
               "Buses run instead until Friday"},
           Row{"Line 5", "Buses run instead (map: https://example.org). Allow 20 minutes.",
               "Buses run instead. Allow 20 minutes."},
           Row{"Line 5", "Use the [stops nearby](https://example.org).", "Use the stops nearby."},
           Row{"Line 5", "停電です。バスをご利用ください。", "停電です。バスをご利用ください。"},
           Row{"Stop moved", "Affected routes: 215, 225, CT2. Use the stop across.", "Use the stop across."},
           Row{"Stop moved", "Affected route: 5 to Zoo", "Affected route: 5 to Zoo"},
           Row{"Line 5", "", ""},
           Row{"Line 5", "- - -", ""},
       }) {
    EXPECT_EQ(rowSecondaryText(row.description, row.title), row.text) << row.description;
  }
}

TEST(RowText, TakesAsManySentencesAsReadWell) {
  const std::string thirty = "Thirty characters stand here. ";
  const std::string ninety(90, 'X');
  EXPECT_EQ(rowSecondaryText("One. Two. Three.", ""), "One. Two. Three.");
  EXPECT_EQ(rowSecondaryText(thirty + ninety + ". More.", ""), thirty + ninety + ".")
      << "so little alone says next to nothing";
  const std::string fifty = "The fifty characters that stand here are a sentence.";
  const std::string both = fifty + " Another fifty characters stand here in a sentence.";
  EXPECT_EQ(rowSecondaryText(both, ""), both);
  EXPECT_EQ(rowSecondaryText(fifty + " " + ninety + ".", ""), fifty) << "a row has no room for both";
  EXPECT_EQ(rowSecondaryText("Short. " + std::string(250, 'Y') + ". Last.", ""), "Short.");
  EXPECT_EQ(rowSecondaryText(std::string(250, 'Y') + ".", ""), std::string(250, 'Y') + ".");

  std::string endless;
  for (int word = 0; word < 200; ++word) endless += "wörter ";
  const std::string cut = rowSecondaryText(endless, "");
  EXPECT_THAT(cut, testing::EndsWith("wörter…"));
  EXPECT_LE(countCharacters(cut), 400U);
  EXPECT_TRUE(isValidUtf8(rowTitle(std::string(500, 'x') + "ö")));
}

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

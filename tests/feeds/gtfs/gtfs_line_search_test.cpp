#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/line_lookup.h"
#include "feeds/text/folded_words.h"
#include "shared/failure.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SharedLineIndex searchedFeed(std::string name, std::vector<FeedRoute> routes) {
  return std::make_shared<const LineIndex>(LineIndex::Contents{.feedName = std::move(name),
                                                               .language = "",
                                                               .agencies = {{"A", "Léman Transports", ""}},
                                                               .routes = std::move(routes)});
}

FeedRoute searchedRoute(std::string id, std::string shortName, std::string longName) {
  return {.id = std::move(id), .shortName = std::move(shortName), .longName = std::move(longName)};
}

class LineSearchTest : public testing::Test {
 protected:
  std::vector<std::string> found(std::string_view query) const {
    std::vector<std::string> ids;
    for (const FoundLine& line : searchLines(feeds_, query)) ids.push_back(line.entry().id);
    return ids;
  }

  /// The line's feed and id, or the error's sentence.
  std::string named(std::string_view name) const {
    const Outcome<FoundLine> line = findLine(feeds_, name);
    return line ? line->index->feedName() + " / " + line->entry().id : sentenceOf(line.error());
  }

  std::vector<SharedLineIndex> feeds_{
      searchedFeed("Metro", {searchedRoute("m:1", "100", "Zoo – Écluse"),
                             searchedRoute("m:2", "10", "Łódź Fabryczna - Pont-Neuf"),
                             searchedRoute("m:3", "1", "Straße der Freiheit"),
                             {"m:4", "", "Red Line", 0, 1, "", ""},
                             searchedRoute("m:5", "2", "Route 10 replacement")}),
      searchedFeed("Bus", {searchedRoute("b1", "1", "Harbour"), searchedRoute("b9", "9", "Hill"),
                           searchedRoute("m:3", "A+", "Airport")})};
};

TEST_F(LineSearchTest, ListsExactNamesThenPrefixesThenTheRest) {
  EXPECT_THAT(found("1"), ElementsAre("m:3", "b1", "m:2", "m:1", "m:5"));
  EXPECT_THAT(found("10"), ElementsAre("m:2", "m:1", "m:5"));
  EXPECT_THAT(found("red"), ElementsAre("m:4"));
}

TEST_F(LineSearchTest, IgnoresCaseAccentsAndTheOrderOfWords) {
  EXPECT_THAT(found("ecluse zo"), ElementsAre("m:1"));
  EXPECT_THAT(found("NEUF lodz"), ElementsAre("m:2"));
  EXPECT_THAT(found("STRASSE"), ElementsAre("m:3"));
  EXPECT_THAT(found("neuf-Pönt"), ElementsAre("m:2"));
  EXPECT_THAT(found("leman line"), ElementsAre("m:4"));
  EXPECT_THAT(found("zoo neuf"), IsEmpty());
}

TEST_F(LineSearchTest, FindsPartsOfWordsLastAndShortOnesOnlyWithoutOthers) {
  EXPECT_THAT(found("luse ZOO"), ElementsAre("m:1"));
  EXPECT_THAT(found("rei"), ElementsAre("m:3"));
  EXPECT_THAT(found("lu"), ElementsAre("m:1"));
  EXPECT_THAT(found("00"), IsEmpty());
}

TEST_F(LineSearchTest, GivesEveryLineForAnEmptyQueryAndNoneForPunctuation) {
  EXPECT_THAT(found(""), ElementsAre("m:3", "b1", "m:5", "b9", "m:2", "m:1", "m:3", "m:4"));
  EXPECT_THAT(found(" \t"), testing::SizeIs(8));
  EXPECT_THAT(found("?!"), IsEmpty());
}

TEST_F(LineSearchTest, FindsTheLineThatIsNamed) {
  EXPECT_EQ(named("m:1"), "Metro / m:1");
  EXPECT_EQ(named("Bus:b1"), "Bus / b1");
  EXPECT_EQ(named("Metro:m:3"), "Metro / m:3");
  EXPECT_EQ(named("9"), "Bus / b9");
  EXPECT_EQ(named("red line"), "Metro / m:4");
  EXPECT_EQ(named("Bus:1"), "Bus / b1");
  EXPECT_EQ(named("harbour"), "Bus / b1") << "the name beside the number";
}

TEST_F(LineSearchTest, SuggestsLinesForAnUnknownName) {
  EXPECT_EQ(named("1"),
            "line \"1\": several lines have this name; name one as Metro:m:3 (Straße der Freiheit), Bus:b1 "
            "(Harbour)");
  EXPECT_EQ(named("m:3"),
            "line \"m:3\": several lines have this name; name one as Metro:m:3 (Straße der Freiheit), "
            "Bus:m:3 (Airport)");
  EXPECT_EQ(named("zoo"), "line \"zoo\": no feed has such a line; did you mean Metro:m:1 (Zoo – Écluse)?");
  EXPECT_EQ(named("Rd Lime"),
            "line \"Rd Lime\": no feed has such a line; did you mean Metro:m:4 (Red Line)?");
  EXPECT_EQ(named("Tram 77"), "line \"Tram 77\": no feed has such a line");
  EXPECT_EQ(named(""), "line \"\": no feed has such a line");
}

TEST(FoldedWords, FoldTheFormsOfALetter) {
  EXPECT_EQ(folded("Łódź ÆØŒ İı ﬁ Ⅻ Ⓐ"), "lodz aeooe ii fi xii a");
  EXPECT_EQ(folded("ΣΊΣΥΦΟΣ"), folded("σίσυφος"));
  EXPECT_THAT(wordsOf("L'île-aux—Mouettes (N°5), 東京 x́y"),
              ElementsAre("L", "île", "aux", "Mouettes", "N", "5", "東京", "x́y"));
}

TEST(FoldedWords, OrderNumbersAsPeopleCount) {
  const std::vector<std::string> inOrder = {
      "", "1", "02", "2a", "9", "10", "10 a", "100", "18446744073709551617", "a", "a2", "a10", "b", "é"};
  for (std::size_t i = 0; i < inOrder.size(); ++i) {
    for (std::size_t j = 0; j < inOrder.size(); ++j) {
      EXPECT_EQ(naturallyBefore(inOrder[i], inOrder[j]), i < j) << inOrder[i] << " " << inOrder[j];
    }
  }
  EXPECT_FALSE(naturallyBefore("007", "7") || naturallyBefore("7", "007"));
}

}  // namespace
}  // namespace linewatch

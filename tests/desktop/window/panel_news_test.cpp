#include "desktop/window/panel_news.h"

#include <gtest/gtest.h>

#include "shared/failure.h"

namespace linewatch::desktop {
namespace {

using Kind = FeedState::Kind;

const Date kNow{Seconds(1'700'000'000)};

FeedState feed(const char* name, Kind kind, double age = -1) {
  FeedState state{.feed = name, .kind = kind};
  if (age >= 0) state.since = kNow - Seconds(age);
  return state;
}

std::string textOf(const FeedNews& news, const char* language = "en") {
  return panelNews(news, WindowTexts(*UserLocale::parse(language)), kNow).text.toStdString();
}

std::vector<UnknownLine> lines(int count) {
  std::vector<UnknownLine> lines;
  for (int i = 1; i <= count; ++i) lines.push_back({.feed = "bus", .name = std::to_string(i)});
  return lines;
}

TEST(PanelNewsTest, NamesTheFeedThatIsNotUpToDate) {
  struct Row {
    FeedState state;
    const char *english, *german;
  };
  for (const Row& row :
       {Row{feed("Bus", Kind::fresh), "", ""},
        Row{feed("Bus", Kind::kept, 12 * 60), "Bus cannot be updated; its advisories came 12 minutes ago.",
            "Bus lässt sich nicht aktualisieren; die Meldungen kamen vor 12 Minuten."},
        Row{feed("Bus", Kind::stale, 3 * 3600), "Bus last updated its advisories 3 hours ago.",
            "Bus hat die Meldungen zuletzt vor 3 Stunden aktualisiert."},
        Row{feed("Bus", Kind::outdated, 34'714'983),
            "Bus last updated its advisories 401 days ago, so they no longer count.",
            "Bus hat die Meldungen zuletzt vor 401 Tagen aktualisiert; sie gelten nicht mehr."},
        Row{feed("Bus", Kind::unreachable, 60),
            "Bus could not be loaded; its last advisories came a minute ago.",
            "Bus lässt sich nicht laden; die letzten Meldungen kamen vor einer Minute."},
        Row{feed("Bus", Kind::unreachable), "Bus could not be loaded.", "Bus lässt sich nicht laden."},
        Row{feed("Bus", Kind::notMatching), "The advisories of Bus do not match its timetable.",
            "Die Meldungen von Bus passen nicht zum Fahrplan."},
        Row{feed("Bus", Kind::incomplete), "Bus has not sent all its advisories yet.",
            "Bus hat noch nicht alle Meldungen gesendet."}}) {
    EXPECT_EQ(textOf({.states = {row.state}}), row.english);
    EXPECT_EQ(textOf({.states = {row.state}}, "de"), row.german);
  }
}

TEST(PanelNewsTest, OffersACityWhenTheFeedOfTheFavouritesWasRemoved) {
  const std::vector<UnknownLine> gone = {{.feed = "Bus", .name = "r1", .isMissing = true},
                                         {.feed = "Bus", .name = "r2", .isMissing = true}};
  EXPECT_TRUE(removedFeedsOf(gone, {{"Bus", "/gtfs", "/alerts"}}).empty()) << "only the lines are gone";
  FeedNews news{.unknownLines = gone,
                .removedFeeds = removedFeedsOf(gone, {}),
                .error = failure("feed Bus", "", "it has been removed")};
  const WindowTexts texts(*UserLocale::parse("en"));
  const PanelNews told = panelNews(news, texts, kNow);
  EXPECT_EQ(told.text, "The feed Bus was removed, so there is no news of its lines.");
  EXPECT_EQ(told.details, told.text);
  EXPECT_TRUE(told.needsCity);
  news.unknownLines.push_back({.feed = "Tram", .name = "7"});
  news.states = {feed("Tram", Kind::unreachable)};
  const PanelNews both = panelNews(news, texts, kNow);
  EXPECT_EQ(both.text,
            "Tram could not be loaded. The feed Bus was removed, so there is no news of its lines. "
            "No news of line 7.");
  EXPECT_FALSE(both.needsCity) << "another update may help";
}

TEST(PanelNewsTest, SaysHowOldKeptAlertsAre) {
  FeedState kept = feed("Bus", Kind::kept, 180);
  kept.written = kNow - Seconds(3600);
  EXPECT_EQ(textOf({.states = {kept}}), "Bus cannot be updated; its advisories came 3 minutes ago.");
  kept.written = kNow - Seconds(7200);
  EXPECT_EQ(textOf({.states = {kept}}),
            "Bus cannot be updated; its advisories came 3 minutes ago and were written 2 hours ago.");
  EXPECT_EQ(textOf({.states = {kept}}, "de"),
            "Bus lässt sich nicht aktualisieren; die Meldungen kamen vor 3 Minuten und sind vor 2 Stunden "
            "geschrieben worden.");
}

TEST(PanelNewsTest, NamesTheWorstFeedAndTheUnknownLines) {
  FeedNews news{
      .states = {feed("Tram", Kind::fresh), feed("Ferry", Kind::kept, 120), feed("Bus", Kind::unreachable)},
      .unknownLines = lines(1)};
  news.states[2].error = failure(FailureCode::unreachable, "feed Bus", "", "connection refused");
  EXPECT_EQ(textOf(news), "Bus could not be loaded. 1 more feed is not up to date. No news of line 1.");
  const PanelNews said = panelNews(news, WindowTexts(*UserLocale::parse("en")), kNow);
  EXPECT_TRUE(said.hasAge);
  EXPECT_EQ(said.details.toStdString(),
            "Bus could not be loaded. (" + sentenceOf(*news.states[2].error) +
                ") Ferry cannot be updated; its advisories came 2 minutes ago. No news of line 1.");
  EXPECT_EQ(textOf({.unknownLines = lines(2)}), "No news of lines 1 and 2.");
  EXPECT_EQ(textOf({.unknownLines = lines(6)}), "No news of lines 1, 2, 3, 4, 5 and 6.");
  EXPECT_EQ(textOf({.unknownLines = lines(40)}), "No news of lines 1, 2, 3, 4, 5 and 35 more.");
  EXPECT_EQ(textOf({.unknownLines = lines(40)}, "de"),
            "Nichts bekannt zu den Linien 1, 2, 3, 4, 5 und 35 weiteren.");
  EXPECT_EQ(textOf({.error = failure(FailureCode::unknown, "", "", "")}),
            "The advisories could not be loaded.");
}

TEST(PanelNewsTest, WritesAgesInWords) {
  const WindowTexts texts(*UserLocale::parse("en"));
  struct Row {
    double age;
    const char* words;
  };
  for (const Row& row : {Row{-500, "less than a minute ago"}, Row{59, "less than a minute ago"},
                         Row{60, "a minute ago"}, Row{7199, "119 minutes ago"}, Row{7200, "2 hours ago"},
                         Row{172'799, "47 hours ago"}, Row{172'800, "2 days ago"}})
    EXPECT_EQ(agoInWords(kNow - Seconds(row.age), texts, kNow).toStdString(), row.words);
}

}  // namespace
}  // namespace linewatch::desktop

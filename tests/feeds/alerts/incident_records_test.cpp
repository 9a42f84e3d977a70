#include "feeds/alerts/incident_records.h"

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"
#include "feeds/alerts/desktop_incident_string_provider.h"

namespace linewatch {
namespace {

using testing::ElementsAre;

SharedLineIndex threeLines() {
  LineIndex::Contents contents{
      .feedName = "test", .language = "de", .agencies = {{.id = "A", .name = "Metro"}}};
  for (const char* id : {"1", "2", "3"}) {
    FeedRoute& route = contents.routes.emplace_back();
    route.id = id;
    route.agency = 0;
  }
  return std::make_shared<const LineIndex>(std::move(contents));
}

IncidentRecords recordsOf(const FeedSketch& feed, std::vector<std::string> languages = {"en"},
                          double now = 0) {
  return {std::make_shared<const IncidentTable>(messageOf(feed), threeLines()),
          std::make_shared<const IncidentLanguage>(IncidentLanguage{.languages = std::move(languages)}),
          Date(Seconds(now))};
}

SharedIncident recordOf(AlertSketch alert, std::vector<std::string> languages = {"en"}, double now = 0) {
  alert.selectors = {{.route = "1"}};
  return recordsOf({.alerts = {std::move(alert)}}, std::move(languages), now).ofRoute(0).at(0);
}

std::string row(const SharedIncident& incident) {
  DesktopIncidentStringProvider provider;
  return provider.cellTitleForIncident(incident)->value_or("-") + " / " +
         provider.cellSecondaryTextForIncident(incident)->value_or("-");
}

TEST(IncidentRecords, HaveTheTextsAndPeriodOfTheAlert) {
  const auto incident =
      recordOf({.id = "1",
                .header = {{"<b>Works</b>", "en"}, {"Bau", "de"}},
                .description = {{"Bus statt Bahn.", "de"}, {"Buses.<br><br>Until May.", "en"}},
                .url = {{"https://example.org/de", "de"}, {"https://example.org/en", "en"}},
                .cause = 10,
                .effect = 1,
                .active = {{10, 20}, {30, 40}}},
               {"en-GB"}, 15);
  EXPECT_EQ(row(incident), "Works / Buses. Until May.");
  EXPECT_EQ(incident->fullDescription(), "Buses.\n\nUntil May.");
  EXPECT_EQ(incident->infoURL(), "https://example.org/en");
  EXPECT_TRUE(incident->isBlockingIncident());
  EXPECT_EQ(incident->startDate(), Date(Seconds(10)));
  EXPECT_EQ(incident->endDate(), Date(Seconds(20)));
  EXPECT_EQ(incident->lastUpdated(), std::nullopt) << "the feed tells its own age only";
  EXPECT_EQ(incident->creationDate(), std::nullopt);
}

TEST(IncidentRecords, TheDetailsHaveTheWholeHeader) {
  std::string header;
  for (int word = 0; word < 150; ++word) header += "word ";
  header += "end";
  const auto incident = recordOf({.header = {{header, ""}}, .description = {{"More.", ""}}});
  EXPECT_THAT(incident->title().value(), testing::EndsWith("word…"));
  EXPECT_EQ(incident->fullDescription(), header + "\n\nMore.");
  EXPECT_EQ(recordOf({.header = {{"Works…", ""}}})->fullDescription(), std::nullopt);
}

TEST(IncidentRecords, OnlyNoServiceBlocks) {
  for (std::int32_t effect = 0; effect <= 11; ++effect) {
    EXPECT_EQ(recordOf({.id = "1", .effect = effect})->isBlockingIncident(), effect == 1) << effect;
  }
}

TEST(IncidentRecords, NoServiceOfTheLineAndOneOfItsStopsIsNoServiceOfTheLine) {
  const AlertSketch alert{
      .id = "1", .selectors = {{.route = "1", .stop = "a"}, {.route = "1"}}, .cause = 10, .effect = 1};
  const auto blocked = recordsOf({.alerts = {alert}}).ofRoute(0).at(0);
  EXPECT_TRUE(blocked->isBlockingIncident());
  EXPECT_EQ(row(blocked), "No service / Construction · Stop a");
}

TEST(IncidentRecords, MissingTextsAreGivenInWords) {
  const TextsSketch works = {{"Works", ""}};
  struct Row {
    AlertSketch alert;
    std::string row;
  };
  for (const Row& r : {
           Row{{.header = works, .cause = 10, .effect = 4}, "Works / Detour · Construction"},
           Row{{.header = works, .effect = 4}, "Works / Detour"},
           Row{{.header = works, .cause = 4}, "Works / Strike"},
           Row{{.header = works, .cause = 2, .effect = 7}, "Works / -"},
           Row{{.header = works, .cause = 99, .effect = 99}, "Works / -"},
           Row{{.header = works, .description = {{"Works!", ""}}, .cause = 8}, "Works / Weather"},
           Row{{.header = {{"Line 5 detour", ""}}, .cause = 8, .effect = 4}, "Line 5 detour / Weather"},
           Row{{.cause = 10, .effect = 4}, "Detour / Construction"},
           Row{{.description = {{"Use bus 5.", ""}}, .effect = 4}, "Detour / Use bus 5."},
           Row{{.description = {{"Use bus 5. It is free.", ""}}, .cause = 10}, "Use bus 5. / It is free."},
           Row{{.description = {{std::string(161, 'x') + ".", ""}}},
               "Service alert / X" + std::string(160, 'x') + "."},
           Row{{.header = {{" <br> ", ""}}}, "Service alert / -"},
           Row{{}, "Service alert / -"},
       }) {
    EXPECT_EQ(row(recordOf(r.alert)), r.row);
  }
}

TEST(IncidentRecords, TitlesThatOnlyNameTheLineSayTheEffect) {
  LineIndex::Contents contents{.feedName = "test", .language = "en"};
  FeedRoute& route = contents.routes.emplace_back();
  route.id = "1";
  route.shortName = "17";
  route.longName = "Harbour Street";
  const auto index = std::make_shared<const LineIndex>(std::move(contents));
  const auto rowOf = [&](AlertSketch alert) {
    alert.selectors = {{.route = "1"}};
    IncidentRecords records(std::make_shared<const IncidentTable>(messageOf({.alerts = {alert}}), index),
                            std::make_shared<const IncidentLanguage>(), Date(Seconds(0)));
    return row(records.ofRoute(0).at(0));
  };
  const TextsSketch text = {{"Use stop A.", ""}};
  EXPECT_EQ(rowOf({.header = {{"17 Harbour Street", ""}}, .description = text, .effect = 4}),
            "Detour / Use stop A.");
  EXPECT_EQ(rowOf({.header = {{"17 Harbour Street", ""}}, .description = text, .cause = 10}),
            "Use stop A. / Construction");
  EXPECT_EQ(rowOf({.header = {{"17 Harbour Street", ""}}, .description = text}), "Use stop A. / -")
      << "an unknown effect has no words";
  EXPECT_EQ(rowOf({.header = {{"17 Harbour Street", ""}}}), "17 Harbour Street / -");
  EXPECT_EQ(rowOf({.header = {{"Line 5", ""}}, .description = text, .effect = 4}), "Line 5 / Use stop A.");
}

TEST(IncidentRecords, CutSentencesInTheLanguageOfTheText) {
  const TextsSketch german = {{"Gesperrt ggf. Sonntag. Bitte warten.", "de"}};
  EXPECT_EQ(row(recordOf({.header = {{"Bau", "de"}}, .description = german}, {"de"})),
            "Bau / Gesperrt ggf. Sonntag. Bitte warten.");
}

TEST(IncidentRecords, ChooseTheLanguageOfEachTextAmongThoseNotEmpty) {
  const AlertSketch alert{.header = {{"Bau", "de"}, {"  ", "en"}, {"Travaux", "fr"}},
                          .description = {{"Buses.", "en"}, {"Busse.", "de"}}};
  EXPECT_EQ(row(recordOf(alert, {"fr", "en"})), "Travaux / Buses.");
  EXPECT_EQ(row(recordOf(alert, {"en"})), "Bau / Buses.");
  EXPECT_EQ(row(recordOf(alert, {})), "Bau / Busse.");
}

TEST(IncidentRecords, LinesShareTheRecordOfAnIncident) {
  IncidentRecords records =
      recordsOf({.alerts = {{.id = "a", .selectors = {{.route = "1"}}, .header = {{"Works", ""}}},
                            {.id = "b", .selectors = {{.agency = "A"}}, .header = {{"Strike", ""}}},
                            {.id = "c", .selectors = {{.route = "2"}}, .header = {{"Works", ""}}}}});
  const TransitIncidents first = records.ofRoute(0);
  const TransitIncidents second = records.ofRoute(1);
  EXPECT_EQ(first, second);
  EXPECT_EQ(row(first.at(0)), "Works / -");
  EXPECT_THAT(records.ofRoute(2), ElementsAre(first.at(1)));
}

TEST(IncidentRecords, IdsAreStableAndTellIncidentsApart) {
  const auto muids = [](const FeedSketch& feed) {
    std::vector<std::uint64_t> all;
    for (const SharedIncident& incident : recordsOf(feed).ofRoute(0)) all.push_back(incident->muid());
    return all;
  };
  const auto alert = [](const char* id, const char* header) {
    return AlertSketch{.id = id, .selectors = {{.route = "1"}}, .header = {{header, ""}}};
  };
  const auto some =
      muids({.alerts = {alert("a", "1"), alert("b", "2"), alert("a", "3"), alert("", "4"), alert("", "5")}});
  EXPECT_EQ(some.size(), 5U);
  EXPECT_EQ(std::set(some.begin(), some.end()).size(), 5U);
  EXPECT_EQ(muids({.alerts = {alert("b", "other"), alert("", "5"), alert("a", "1")}, .timestamp = 5}),
            (std::vector{some[1], some[4], some[0]}));
  EXPECT_EQ(some[0], stableMuid("test", "a"));
}

}  // namespace
}  // namespace linewatch

#include "feeds/transit_feeds.h"

#include <future>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/feeds_fixture.h"
#include "platform/transit_storage_line_item.h"

namespace linewatch {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TransitFeedsTest : public FeedsFixture {
 protected:
  /// A feed in files, with the routes 1 and 2.
  StoredFeed feed(const std::string& name, const FeedSketch& alerts) {
    const auto folder = folder_.path() / name;
    std::filesystem::create_directories(folder);
    writeFile(folder / "routes.txt", "route_id,route_short_name\n1," + name + " one\n2," + name + " two\n");
    writeFile(folder / "alerts.pb", bytesOf(alerts));
    return {name, folder.string(), (folder / "alerts.pb").string()};
  }

  static TransitFeeds::Source always(const std::vector<StoredFeed>& feeds) {
    return [feeds] { return feeds; };
  }

  /// The lines with the titles of their incidents, or the sentence of the error.
  std::vector<std::string> lines(TransitFeeds& feeds, const std::vector<MapItemIdentifier>& identifiers) {
    const auto items = feeds.lineItems(identifiers, now_);
    if (!items) return {sentenceOf(items.error())};
    std::vector<std::string> all;
    for (const SharedLineItem& item : *items) {
      std::string& line = all.emplace_back(item->name() + ":");
      for (const SharedIncident& incident : item->incidents()) line += " " + incident->title().value_or("-");
    }
    return all;
  }
};

MapItemIdentifier line(const char* feed, const char* route) { return {stableMuid(feed, route), feed, route}; }

TEST_F(TransitFeedsTest, AnswersInTheOrderAskedWithTheIncidentsOfEachFeed) {
  TransitFeeds feeds(always({feed("bus", {.alerts = {alertOf("1", "Works"), alertOf("1", "Strike")}}),
                             feed("rail", {.alerts = {alertOf("2", "Storm")}, .timestamp = 0})}),
                     documents(), {});
  EXPECT_THAT(
      lines(feeds,
            {line("rail", "2"), {7, "bus", "7"}, line("bus", "1"), line("rail", "1"), line("rail", "2")}),
      ElementsAre("rail two: Storm", "bus one: Works Strike", "rail one:", "rail two: Storm"));
  const auto states = feeds.states();
  ASSERT_EQ(states.size(), 2U);
  EXPECT_EQ(states[0].written, Date(Seconds(1000)));
  EXPECT_EQ(states[1].written, std::nullopt);

  EXPECT_THAT(lines(feeds, {line("bus", "2")}), ElementsAre("bus two:"));
  EXPECT_EQ(feeds.states().size(), 1U) << "the other feed was not read";
  EXPECT_THAT(lines(feeds, {}), IsEmpty());
}

TEST_F(TransitFeedsTest, ReadsTheListOfFeedsAtEachLookUp) {
  const StoredFeed bus = feed("bus", {.alerts = {alertOf("1", "Works")}});
  Outcome<std::vector<StoredFeed>> shown = std::vector<StoredFeed>{bus};
  TransitFeeds feeds([&] { return shown; }, documents(), {});
  const std::vector both{line("bus", "1"), line("rail", "2")};
  EXPECT_THAT(lines(feeds, both), ElementsAre("bus one: Works"));
  shown = std::vector<StoredFeed>{feed("rail", {}), bus};
  EXPECT_THAT(lines(feeds, both), ElementsAre("bus one: Works", "rail two:"));
  shown = failure("state database", "", "locked");
  EXPECT_THAT(lines(feeds, both), ElementsAre("state database: locked"));
  EXPECT_THAT(feeds.states(), IsEmpty());
  shown = std::vector<StoredFeed>{bus};
  EXPECT_THAT(lines(feeds, both), ElementsAre("bus one: Works"));
}

TEST_F(TransitFeedsTest, SaysNothingOfAFeedThatIsRemovedDuringTheLookUp) {
  const StoredFeed bus = feed("bus", {.alerts = {alertOf("1", "Works")}});
  int reads = 0;
  TransitFeeds feeds([&] { return ++reads == 1 ? std::vector{bus} : std::vector<StoredFeed>(); }, documents(),
                     {});
  EXPECT_THAT(lines(feeds, {line("bus", "1")}),
              ElementsAre("feed bus: it has been removed, so nothing is known of its line 1"));
  EXPECT_THAT(feeds.states(), IsEmpty());
  EXPECT_EQ(removedFeedsOf(feeds.unknownLines(), feeds.feeds()), std::vector<std::string>{"bus"});
}

TEST_F(TransitFeedsTest, GivesTheLinesOfAnIncident) {
  const AlertSketch works{
      .id = "works", .selectors = {{.route = "2"}, {.route = "1"}}, .header = {{"Works", ""}}};
  TransitFeeds feeds(always({feed("bus", {.alerts = {alertOf("1", "Strike"), works}}),
                             feed("rail", {.alerts = {alertOf("2", "Storm")}})}),
                     documents(), {});
  const std::vector<std::uint64_t> muids{stableMuid("bus", "works"), stableMuid("rail", "Storm"), 7};
  const auto namesOf = [&](std::uint64_t muid) {
    std::string names;
    const auto linesOf = feeds.linesWithIncidents(muids);
    for (const auto& found : linesOf.at(muid)) names += found->name + ". ";
    return names;
  };
  EXPECT_EQ(namesOf(muids[0]), "") << "nothing was read";
  lines(feeds, {line("bus", "1")});
  EXPECT_EQ(namesOf(muids[0]), "bus one. bus two. ");
  EXPECT_EQ(namesOf(muids[1]), "") << "this feed was not";
  EXPECT_EQ(namesOf(7), "");
}

TEST_F(TransitFeedsTest, StopNoticesHaveNamesLinesAndDetails) {
  const AlertSketch closed{.id = "closed",
                           .selectors = {{.route = "1", .stop = "s"}, {.route = "2", .stop = "s"}},
                           .effect = 1,
                           .severity = 3};
  const StoredFeed bus = feed("bus", {.alerts = {closed, alertOf("1", "Works")}});
  writeFile(folder_.path() / "bus" / "stops.txt", "stop_id,stop_name\ns,Harbour\n");
  TransitFeeds feeds(always({bus}), documents(), {});
  MapItemIdentifier withoutStops = line("bus", "1");
  withoutStops.choice.stops = LineChoice::Stops::none;
  EXPECT_THAT(lines(feeds, {line("bus", "1"), line("bus", "2"), withoutStops}),
              ElementsAre("bus one: Works Harbour closed", "bus two: Harbour closed", "bus one: Works"));
  const auto items = *feeds.lineItems(std::vector{line("bus", "2")}, now_);
  const std::uint64_t muid = items.at(0)->incidents().at(0)->muid();
  EXPECT_EQ(feeds.linesWithIncidents({&muid, 1}).at(muid).size(), 2U);
  const auto details = feeds.detailsOfIncidents({&muid, 1});
  EXPECT_THAT(details.at(muid).stops, ElementsAre(IncidentStop{"s", "Harbour"}));
  EXPECT_EQ(details.at(muid).severity, AlertSeverity::warning);
}

/// A server that answers once it is released.
class SlowServer final : public HttpFetcher {
 public:
  Outcome<HttpResponse> fetch(const HttpRequest&) override {
    isAsked.set_value();
    isReleased.get_future().wait();
    return body({.alerts = {alertOf("1", "Strike")}});
  }

  std::promise<void> isAsked, isReleased;
};

TEST_F(TransitFeedsTest, GivesTheLastStateWhileAServerIsSlow) {
  const StoredFeed bus = feed("bus", {.alerts = {alertOf("1", "Works")}});
  StoredFeed rail = feed("rail", {});
  rail.alerts = "https://example.org/alerts";
  const auto slow = std::make_shared<SlowServer>();
  TransitFeeds feeds(
      always({bus, rail}),
      std::make_shared<FeedDocuments>(
          nullptr, [this] { return now_; },
          [slow]() -> Outcome<std::shared_ptr<HttpFetcher>> { return std::shared_ptr<HttpFetcher>(slow); }),
      {});
  ASSERT_THAT(lines(feeds, {line("bus", "1")}), ElementsAre("bus one: Works"));

  std::thread thread(
      [&] { EXPECT_THAT(lines(feeds, {line("rail", "1")}), ElementsAre("rail one: Strike")); });
  slow->isAsked.get_future().wait();
  // Were one of these to wait for the look-up, the test would never end.
  EXPECT_EQ(feeds.feeds().size(), 2U);
  EXPECT_EQ(feeds.states().at(0).feed, "bus");
  EXPECT_THAT(feeds.unknownLines(), IsEmpty());
  const std::uint64_t works = stableMuid("bus", "Works");
  EXPECT_EQ(feeds.linesWithIncidents({&works, 1}).at(works).size(), 1U);
  slow->isReleased.set_value();
  thread.join();
  EXPECT_EQ(feeds.states().at(0).feed, "rail");
}

TEST_F(TransitFeedsTest, LeavesOutUnknownLines) {
  const StoredFeed good = feed("good", {});
  StoredFeed silent = feed("silent", {}), broken = feed("broken", {});
  silent.alerts = {};
  writeFile(broken.alerts.locations.front(), "no feed");
  const StoredFeed lost{"lost", (folder_.path() / "lost").string(), good.alerts};
  TransitFeeds feeds(always({lost, good, silent, broken}), documents(), {});
  EXPECT_THAT(lines(feeds, {line("good", "1")}), ElementsAre("good one:"));
  EXPECT_THAT(feeds.unknownLines(), IsEmpty());

  EXPECT_THAT(lines(feeds, {line("silent", "2"), line("lost", "1"), line("good", "1"), line("broken", "1"),
                            line("good", "none")}),
              ElementsAre("good one:"));
  EXPECT_THAT(
      feeds.unknownLines(),
      ElementsAre(UnknownLine{"silent", "2", "silent two"}, UnknownLine{"lost", "1", "1"},
                  UnknownLine{"broken", "1", "broken one"}, UnknownLine{"good", "none", "none", true}));
  EXPECT_THAT(platform_->transcript().logTexts("error"),
              ElementsAre(HasSubstr("feed lost: "), HasSubstr("feed silent: "), HasSubstr("feed broken: ")));
  std::vector<std::string> states;
  for (const FeedState& state : feeds.states()) {
    states.push_back(state.feed + (state.knowsLines() ? " known" : " unknown"));
    EXPECT_EQ(nextRetry(state, now_).has_value(), state.feed == "lost" || state.feed == "broken");
  }
  EXPECT_THAT(states, ElementsAre("lost unknown", "good known", "silent unknown", "broken unknown"));

  EXPECT_THAT(lines(feeds, {line("silent", "1"), line("lost", "1")}),
              ElementsAre("feed silent: it has no alerts, so nothing is known of its lines"));
  EXPECT_THAT(lines(feeds, {line("lost", "1")}), ElementsAre(HasSubstr("no such file or folder")));
  EXPECT_EQ(feeds.states().at(0).failures, 1U) << "it is not tried again so soon";
  now_ += Seconds(15);
  EXPECT_THAT(lines(feeds, {line("lost", "1")}), ElementsAre(HasSubstr("no such file or folder")));
  EXPECT_EQ(feeds.states().at(0).failures, 2U);
  EXPECT_THAT(lines(feeds, {line("broken", "1")}),
              ElementsAre(AllOf(HasSubstr("feed broken: " + broken.alerts.locations.front() + ": "),
                                HasSubstr("byte 0"))));
  const FeedLines known = feeds.lines();
  ASSERT_EQ(known.indexes.size(), 3U);
  EXPECT_EQ(known.indexes[0]->feedName(), "good");
  EXPECT_THAT(sentenceOf(*known.error), HasSubstr("no such file or folder"));
  EXPECT_FALSE(feeds.linesOf("nowhere"));
}

TEST_F(TransitFeedsTest, NamesLinesThatAreGoneAsUnknown) {
  TransitFeeds feeds(always({feed("bus", {}), feed("rail", {})}), documents(), {});
  const MapItemIdentifier gone = line("bus", "9"), removed = line("tram", "3");
  EXPECT_THAT(lines(feeds, {gone, line("rail", "1"), removed}), ElementsAre("rail one:"));
  const UnknownLine unknownGone{"bus", "9", "9", true}, unknownRemoved{"tram", "3", "3", true};
  EXPECT_THAT(feeds.unknownLines(), ElementsAre(unknownGone, unknownRemoved));

  EXPECT_THAT(lines(feeds, {gone, removed}), ElementsAre("feed bus: its timetable no longer has the line 9"));
  EXPECT_THAT(feeds.unknownLines(), ElementsAre(unknownGone, unknownRemoved));
  EXPECT_THAT(lines(feeds, {removed, gone}),
              ElementsAre("feed tram: it has been removed, so nothing is known of its line 3"));
  EXPECT_THAT(lines(feeds, {{7}}), IsEmpty()) << "nothing names this line";
  EXPECT_THAT(feeds.unknownLines(), IsEmpty());
}

TEST_F(TransitFeedsTest, LogsAFailureThatRepeatsItselfOnce) {
  StoredFeed remote = feed("bus", {});
  remote.alerts = "https://example.org/alerts";
  TransitFeeds feeds(always({remote, feed("rail", {})}), documents(), {});
  const auto logged = [&](const Outcome<HttpResponse>& answer) {
    server_->answer = answer;
    now_ += Seconds(60);
    lines(feeds, {line("bus", "1"), line("rail", "1")});
    return platform_->transcript().logTexts("error").size();
  };
  const auto timedOut = failure("timed out", "", "");
  EXPECT_EQ(logged(timedOut), 1U);
  EXPECT_EQ(logged(timedOut), 1U);
  EXPECT_EQ(logged(failure("no such host", "", "")), 2U);
  EXPECT_EQ(logged(body({})), 2U);
  EXPECT_EQ(logged(timedOut), 3U);
  for (int minute = 2; minute < 15; ++minute) EXPECT_EQ(logged(timedOut), 3U) << minute;
  EXPECT_EQ(logged(timedOut), 4U) << "the alerts no longer serve";
}

TEST_F(TransitFeedsTest, FindsALineWithoutItsFeedByMuid) {
  const StoredFeed lost{"lost", (folder_.path() / "lost").string(), ""};
  TransitFeeds feeds(always({lost, feed("good", {})}), documents(), {});
  EXPECT_THAT(lines(feeds, {{stableMuid("good", "2")}}), ElementsAre("good two:"));
  EXPECT_EQ(feeds.states().size(), 1U);
  EXPECT_THAT(lines(feeds, {{7}, {stableMuid("good", "2")}}), ElementsAre("good two:"));
  EXPECT_THAT(feeds.unknownLines(), ElementsAre(UnknownLine{"lost", "", ""})) << "it may be there";
}

TEST_F(TransitFeedsTest, LinesOfAlertsThatMatchNothingAreUnknown) {
  const auto answer = [this](const FeedSketch& alerts) {
    platform_->transcript().clear();
    TransitFeeds feeds(always({feed("bus", alerts)}), documents(), {});
    auto given = lines(feeds, {line("bus", "2")});
    EXPECT_EQ(feeds.states().at(0).knowsLines(), feeds.unknownLines().empty());
    EXPECT_THAT(platform_->transcript().logTexts("debug"), ElementsAre(HasSubstr(" resolve to nothing")));
    return given;
  };
  const AlertSketch elsewhere = alertOf("nowhere", "Works"), aimless = {.id = "a", .header = {{"Storm", ""}}};
  EXPECT_THAT(
      answer({.alerts = {elsewhere, aimless}}),
      ElementsAre("feed bus: alerts: 1 of 1 selector resolved to nothing, 1 alert without a selector: "
                  "the alerts do not match the timetable"));
  EXPECT_THAT(answer({.alerts = {elsewhere, aimless, alertOf("1", "Strike")}}), ElementsAre("bus two:"));
  EXPECT_THAT(answer({}), ElementsAre("bus two:"));
}

TEST_F(TransitFeedsTest, GivesTheStatesOfAllFeeds) {
  const StoredFeed fresh = feed("fresh", {}), old = feed("old", {.timestamp = 1}),
                   lost{"lost", (folder_.path() / "lost").string(), ""};
  now_ = Date(Seconds(90'000));
  writeFile(fresh.alerts.locations.front(), bytesOf({.timestamp = 90'000}));
  TransitFeeds feeds(always({fresh, old, lost}), documents(), {});
  using Kind = FeedState::Kind;
  const std::vector<Kind> expected{Kind::fresh, Kind::outdated, Kind::unreachable};
  const auto checked = feeds.check(now_);
  ASSERT_TRUE(checked);
  for (std::size_t place = 0; place < expected.size(); ++place)
    EXPECT_EQ(checked->at(place).kind, expected[place]);
  const auto read = documents();
  EXPECT_EQ(stateOfFeed(old, *read->lineIndexOf(old), read->alertsOf(old, {}), now_).kind, Kind::outdated);
  EXPECT_THAT(feeds.states(), IsEmpty()) << "no look-up asked for them";
}

TEST_F(TransitFeedsTest, IgnoresAnOlderPayload) {
  const StoredFeed bus = feed("bus", {.alerts = {alertOf("1", "Works")}, .timestamp = 500});
  TransitFeeds feeds(always({bus}), documents(), {});
  EXPECT_THAT(lines(feeds, {line("bus", "1")}), ElementsAre("bus one: Works"));
  writeFile(bus.alerts.locations.front(), bytesOf({.timestamp = 499}));
  EXPECT_THAT(lines(feeds, {line("bus", "1")}), ElementsAre("bus one: Works"));
  writeFile(bus.alerts.locations.front(),
            bytesOf({.alerts = {alertOf("1", "Strike")}, .timestamp = 501, .isDifference = true}));
  EXPECT_THAT(lines(feeds, {line("bus", "1")}), ElementsAre("bus one: Works Strike"));
  writeFile(bus.alerts.locations.front(), bytesOf({.timestamp = 502}));
  EXPECT_THAT(lines(feeds, {line("bus", "1")}), ElementsAre("bus one:"));
}

TEST_F(TransitFeedsTest, ANewHeaderTimeAloneChangesNoLine) {
  FeedSketch alerts{.alerts = {alertOf("1", "Works")}, .timestamp = 500};
  const StoredFeed bus = feed("bus", alerts);
  TransitFeeds feeds(always({bus}), documents(), {});
  const auto stored = [&] {
    const std::vector<MapItemIdentifier> asked = {line("bus", "1")};
    return TransitStorageLineItem(*feeds.lineItems(asked, now_)->at(0)).data();
  };
  const Bytes before = stored();
  alerts.timestamp = 600;
  writeFile(bus.alerts.locations.front(), bytesOf(alerts));
  now_ += Seconds(60);
  EXPECT_EQ(stored(), before);
  EXPECT_EQ(feeds.states().at(0).written, Date(Seconds(600)));
  alerts.alerts[0].effect = 1;
  writeFile(bus.alerts.locations.front(), bytesOf(alerts));
  EXPECT_NE(stored(), before);
}

}  // namespace
}  // namespace linewatch

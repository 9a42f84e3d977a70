#include "feeds/feed_state.h"

#include <vector>

#include <gtest/gtest.h>

#include "shared/failure.h"

namespace linewatch {
namespace {

using StateKind = FeedState::Kind;

constexpr Date kNow{Seconds(1'000'000)};

Date ago(double seconds) { return kNow - Seconds(seconds); }

/// Facts of alerts that were received and written just now.
FeedFacts fresh() { return {.feed = "bus", .written = kNow, .received = kNow}; }

FeedFacts writtenAgo(double seconds) {
  FeedFacts facts = fresh();
  facts.written = ago(seconds);
  return facts;
}

FeedFacts counting(const SelectorCounts& counts) {
  FeedFacts facts = fresh();
  facts.counts = counts;
  return facts;
}

/// Alerts that came once; the fetches since failed.
FeedFacts failing(double receivedAgo, FeedFacts facts = fresh()) {
  facts.received = ago(receivedAgo);
  facts.failure = failure(FailureCode::timedOut, "feed bus", "", "timed out");
  facts.failures = 2;
  facts.failed = ago(10);
  return facts;
}

FeedFacts onlyChanges() {
  FeedFacts facts = fresh();
  facts.isWhole = false;
  return facts;
}

FeedFacts neverReceived() {
  FeedFacts facts = failing(0);
  facts.received = facts.written = std::nullopt;
  return facts;
}

struct Row {
  const char* name;
  FeedFacts facts;
  StateKind kind;
  std::optional<Date> since = {};
  const char* sentence = "";
};

const Row kRows[] = {
    {"just received", fresh(), StateKind::fresh},
    {"no time in the header", {.feed = "bus", .received = kNow}, StateKind::fresh},
    {"an hour old", writtenAgo(3600), StateKind::fresh},
    {"over an hour old", writtenAgo(3601), StateKind::stale, ago(3601)},
    {"a day old", writtenAgo(86400), StateKind::stale, ago(86400)},
    {"over a day old", writtenAgo(86401), StateKind::outdated, ago(86401),
     "feed bus: its alerts are 24 hours old"},
    {"a week old", writtenAgo(7 * 86400), StateKind::outdated, ago(7 * 86400),
     "feed bus: its alerts are 7 days old"},
    {"from the future", writtenAgo(-301), StateKind::fresh},
    {"kept", failing(899), StateKind::kept, ago(899), "feed bus: timed out"},
    {"kept too long", failing(900), StateKind::unreachable, ago(900), "feed bus: timed out"},
    {"kept from the future", failing(-1), StateKind::unreachable, ago(-1), "feed bus: timed out"},
    {"kept and stale", failing(60, writtenAgo(4000)), StateKind::kept, ago(60), "feed bus: timed out"},
    {"kept and outdated", failing(60, writtenAgo(90'000)), StateKind::outdated, ago(90'000),
     "feed bus: its alerts are 25 hours old"},
    {"never received", neverReceived(), StateKind::unreachable, {}, "feed bus: timed out"},
    {"only changes",
     onlyChanges(),
     StateKind::incomplete,
     {},
     "feed bus: only changes have come so far, and no list of all alerts"},
    {"kept changes",
     failing(60, onlyChanges()),
     StateKind::incomplete,
     {},
     "feed bus: only changes have come so far, and no list of all alerts"},
    {"half of the routes unknown",
     counting({.fitting = 1, .unknown = 1, .namingRoutes = 2, .unknownRoutes = 1}), StateKind::fresh},
    {"most routes unknown",
     counting({.fitting = 1, .unknown = 2, .namingRoutes = 3, .unknownRoutes = 2}),
     StateKind::notMatching,
     {},
     "feed bus: alerts: 2 of 3 selectors resolved to nothing: the alerts do not match the timetable"},
    {"no alert says what it is about",
     counting({.alertsWithoutSelector = 1}),
     StateKind::notMatching,
     {},
     "feed bus: alerts: 1 alert without a selector: the alerts do not match the timetable"},
    {"an incomplete alert beside others", counting({.fitting = 1, .alertsWithoutSelector = 1}),
     StateKind::fresh},
    {"stops alone", counting({.notAboutLines = 3}), StateKind::fresh},
};

TEST(FeedState, FollowsFromTheFacts) {
  for (const Row& row : kRows) {
    const FeedState state = stateOf(row.facts, kNow);
    EXPECT_EQ(state.kind, row.kind) << row.name;
    EXPECT_EQ(state.since, row.since) << row.name;
    EXPECT_EQ(state.error ? sentenceOf(*state.error) : "", row.sentence) << row.name;
  }
  EXPECT_EQ(stateOf(writtenAgo(-301), kNow).written, std::nullopt) << "a wrong clock dates nothing";
  EXPECT_EQ(stateOf(writtenAgo(-300), kNow).written, kNow + Seconds(300));
}

TEST(FeedState, TheAgeCountsFromTheHeaderOrElseFromReceipt) {
  EXPECT_EQ(ageOf(stateOf(writtenAgo(70), kNow), kNow), Seconds(70));
  EXPECT_EQ(ageOf(stateOf(writtenAgo(-70), kNow), kNow), Seconds(0));
  EXPECT_EQ(ageOf(stateOf({.feed = "bus", .received = ago(20)}, kNow), kNow), Seconds(20));
  EXPECT_EQ(ageOf(stateOf(neverReceived(), kNow), kNow), std::nullopt);
  EXPECT_TRUE(hasOldHeader(stateOf(failing(60, writtenAgo(3601)), kNow), kNow)) << "though it is kept";
  EXPECT_FALSE(hasOldHeader(stateOf(failing(60, writtenAgo(3600)), kNow), kNow));
}

TEST(FeedState, RetriesAfterAMinuteAndThenDoublesThePause) {
  FeedState state = stateOf(fresh(), kNow);
  EXPECT_EQ(nextRetry(state, kNow), std::nullopt);
  state.failed = kNow;
  const double expected[] = {60, 120, 240, 480, 900, 900};
  for (const double seconds : expected) {
    ++state.failures;
    EXPECT_EQ(nextRetry(state, kNow), kNow + Seconds(seconds));
  }
  state.failures = 1'000'000;
  EXPECT_EQ(nextRetry(state, kNow), kNow + Seconds(900));
  EXPECT_EQ(nextRetry(state, kNow + Seconds(1000)), kNow + Seconds(1000)) << "it is due";
  EXPECT_EQ(nextRetry(state, ago(5000)), ago(4100)) << "the clock was set back";
  state.retryAfter = kNow + Seconds(5);
  EXPECT_EQ(nextRetry(state, kNow), kNow + Seconds(5));
  state.retryAfter = kNow + Seconds(3600);
  EXPECT_EQ(nextRetry(state, kNow), kNow + Seconds(3600));
}

TEST(FeedState, TheNextUpdateIsTheEarliestRetryOrEndOfGrace) {
  const std::vector none{stateOf(fresh(), kNow), stateOf(writtenAgo(4000), kNow)};
  EXPECT_EQ(nextUpdate(none, kNow), std::nullopt);
  const FeedState kept = stateOf(failing(100), kNow), endsSoon = stateOf(failing(890), kNow);
  EXPECT_EQ(graceEnd(kept), kNow + Seconds(800));
  EXPECT_EQ(graceEnd(stateOf(failing(900), kNow)), std::nullopt);
  EXPECT_EQ(nextUpdate(std::vector{none[0], kept}, kNow), kNow + Seconds(110))
      << "120 s after the second failure";
  EXPECT_EQ(nextUpdate(std::vector{kept, endsSoon}, kNow), kNow + Seconds(10));
}

}  // namespace
}  // namespace linewatch

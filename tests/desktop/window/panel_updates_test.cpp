#include "desktop/window/panel_updates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shared/failure.h"
#include "simulation/platform_test.h"

namespace linewatch::desktop {
namespace {

using testing::ElementsAre;
using Kind = FeedState::Kind;

constexpr double kSleep = 3600;

/// A fetch ends at once, and first calls `fetch_`. With `holdsFetches_` the test ends it.
class PanelUpdatesTest : public PlatformTest {
 protected:
  void SetUp() override {
    updates_.setVisible(true);
    ask();
  }

  Date now() { return platform_->mainLoop().now(); }
  /// A feed that failed just now, so many times in a row.
  FeedState failing(std::uint32_t failures, Kind kind = Kind::unreachable) {
    return {.feed = "bus", .kind = kind, .failures = failures, .failed = now()};
  }
  void ask() {
    ++asked_;
    updates_.fetchDidBegin();
    if (!holdsFetches_) end();
  }
  void end() {
    if (fetch_) fetch_();
    updates_.fetchDidEnd(/*failed=*/false);
  }
  /// The number of fetches that start within the time.
  int within(double seconds) {
    const int before = asked_;
    pass(seconds);
    return asked_ - before;
  }
  void pass(double seconds) {
    for (double passed = 0; passed < seconds; ++passed) {
      clocks_.realTime += Seconds(1);
      clocks_.sinceStart += Seconds(1);
      clocks_.awake += Seconds(1);
      platform_->advance(1);
    }
  }
  /// Seconds until the next fetch starts.
  int pause() {
    int seconds = 0;
    for (const int before = asked_; asked_ == before && seconds < 20'000; ++seconds) pass(1);
    return seconds;
  }

  int asked_ = 0;
  bool holdsFetches_ = false;
  /// Sets `states_` when a fetch ends.
  std::function<void()> fetch_;
  std::vector<FeedState> states_;
  ClockReading clocks_;
  PanelUpdates updates_{platform_->mainLoop(),
                        platform_->randomSource(),
                        [this] { ask(); },
                        {.refresh = Seconds(120),
                         .feedStates = [this] { return states_; },
                         .readClocks = [this] { return clocks_; }}};
};

TEST_F(PanelUpdatesTest, RefreshesWithJitterWhileVisible) {
  std::vector<int> pauses;
  for (int i = 0; i < 20; ++i) pauses.push_back(pause());
  EXPECT_THAT(pauses, testing::Each(testing::AllOf(testing::Ge(120), testing::Le(133))));
  EXPECT_NE(std::ranges::min(pauses), std::ranges::max(pauses)) << "panels drift apart";
  updates_.setMetered(true);
  EXPECT_GE(pause(), 600) << "the pending update is put off too";
  updates_.setMetered(false);
  updates_.setVisible(false);
  EXPECT_EQ(within(4000), 0);
}

TEST_F(PanelUpdatesTest, RetriesAFailedFeedWithGrowingPauses) {
  std::uint32_t failures = 0;
  fetch_ = [&] { states_ = {failing(++failures)}; };
  updates_.userDidAsk();
  for (const int most : {60, 120, 240, 480, 900, 900}) {
    const int seconds = pause();
    EXPECT_GE(seconds, most - 6);
    EXPECT_LE(seconds, most);
  }
  fetch_ = [&] { states_ = {failing(1)}, states_[0].retryAfter = now() + Seconds(3000); };
  updates_.userDidAsk();
  EXPECT_GE(pause(), 3000) << "the server says when";
  fetch_ = [&] { states_ = {failing(9), {.feed = "tram"}}; };
  updates_.userDidAsk();
  EXPECT_LE(pause(), 133) << "for the feed that works";
}

TEST_F(PanelUpdatesTest, AsksWhenTheGraceOfKeptAlertsEnds) {
  struct Row {
    const char* when;
    double keptFor;
    std::uint32_t failures;
    int least, most;
  };
  for (const Row& row : {Row{"before the retry", 600, 5, 300, 301}, Row{"after the retry", 600, 1, 54, 60},
                         Row{"just ended", 899.5, 5, 5, 6}}) {
    fetch_ = [&] {
      states_ = {failing(row.failures, Kind::kept)};
      states_[0].since = now() - Seconds(row.keptFor);
    };
    updates_.userDidAsk();
    const int seconds = pause();
    EXPECT_GE(seconds, row.least) << row.when;
    EXPECT_LE(seconds, row.most) << row.when;
  }
}

TEST_F(PanelUpdatesTest, AsksOnceAfterSleepOrAJumpOfTheClock) {
  struct Row {
    const char* what;
    ClockReading change;
    int asks;
  };
  for (const Row& row :
       {Row{"sleep", {.realTime = Seconds(kSleep), .sinceStart = Seconds(kSleep)}, 1},
        Row{"set forward", {.realTime = Seconds(40)}, 1}, Row{"set back", {.realTime = Seconds(-kSleep)}, 1},
        Row{"corrected a little", {.realTime = Seconds(3)}, 0}}) {
    const int before = asked_;
    clocks_.realTime += row.change.realTime;
    clocks_.sinceStart += row.change.sinceStart;
    updates_.checkClock();
    updates_.checkClock();
    updates_.connectionDidReturn();
    EXPECT_EQ(asked_ - before, row.asks) << row.what;
  }
  clocks_.sinceStart += Seconds(kSleep);
  clocks_.realTime += Seconds(kSleep);
  const int before = asked_;
  updates_.userDidAsk();
  updates_.checkClock();
  EXPECT_EQ(asked_ - before, 1) << "a fetch has begun since the machine woke up";
}

/// After sleep three events come in any order, before or after the end of a fetch: a due timer, the change of
/// the clock, and the return of the network.
TEST_F(PanelUpdatesTest, AsksOnceAfterSleepInAnyOrderOfEvents) {
  const auto timer = [this] { pause(); };
  const auto clock = [this] { updates_.checkClock(); };
  const auto network = [this] { updates_.connectionDidReturn(); };
  const std::vector<std::vector<std::function<void()>>> orders = {
      {clock, network}, {network, clock}, {timer, clock, network}, {timer, network, clock}};
  for (const bool holds : {false, true}) {
    for (std::size_t i = 0; i < orders.size(); ++i) {
      pass(20);
      holdsFetches_ = holds;
      clocks_.realTime += Seconds(kSleep);
      clocks_.sinceStart += Seconds(kSleep);
      const int before = asked_;
      for (const auto& notice : orders[i]) notice();
      if (holds) end();
      EXPECT_EQ(asked_ - before, 1) << "order " << i << (holds ? ", during the fetch" : ", after it");
    }
  }
}

TEST_F(PanelUpdatesTest, AsksAgainIfSomethingHappensDuringAFetch) {
  holdsFetches_ = true;
  updates_.userDidAsk();
  for (int i = 0; i < 8; ++i) updates_.userDidAsk();
  EXPECT_EQ(asked_, 2);
  updates_.favoritesDidChange();
  updates_.favoritesDidChange();
  EXPECT_EQ(asked_, 2);
  end();
  EXPECT_EQ(asked_, 3);
  clocks_.sinceStart += Seconds(kSleep);
  updates_.checkClock();
  EXPECT_EQ(asked_, 3);
  end();
  EXPECT_EQ(asked_, 4) << "the machine slept during the fetch";
  end();
  EXPECT_EQ(asked_, 4);
}

TEST_F(PanelUpdatesTest, RetriesSoonAfterTheConnectionReturns) {
  pass(20);
  fetch_ = [this] { states_ = {failing(5)}; };
  updates_.connectionDidReturn();
  EXPECT_EQ(asked_, 2);
  EXPECT_EQ(within(7), 1) << "the connection was not ready yet";
  EXPECT_EQ(within(50), 0) << "only once";
  fetch_ = [this] { states_ = {{.feed = "bus"}}; };
  updates_.connectionDidReturn();
  EXPECT_EQ(asked_, 4);
  EXPECT_EQ(within(100), 0);
}

TEST_F(PanelUpdatesTest, FetchesNothingWhileHidden) {
  updates_.setVisible(false);
  const int before = asked_;
  updates_.connectionDidReturn();
  updates_.favoritesDidChange();
  clocks_.sinceStart += Seconds(kSleep);
  updates_.checkClock();
  updates_.fetchDidBegin();
  updates_.favoritesDidChange();
  end();
  EXPECT_EQ(within(4000), 0);
  EXPECT_EQ(asked_, before);
}

}  // namespace
}  // namespace linewatch::desktop

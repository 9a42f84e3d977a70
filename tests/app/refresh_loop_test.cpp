#include "app/refresh_loop.h"

#include <functional>
#include <optional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/next_change.h"
#include "platform/transit_records.h"
#include "simulation/platform_test.h"

namespace linewatch::app {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RefreshLoopTest : public PlatformTest {
 protected:
  simulation::VirtualMainLoop& loop() { return platform_->mainLoop(); }
  /// A look that takes so long.
  RefreshLoop::Look look(Seconds duration = Seconds(0)) {
    return [this, duration](std::function<void()> done) {
      looks_.push_back(loop().elapsed().count());
      if (duration == Seconds(0)) return done();
      loop().runAfter(duration, std::move(done));
    };
  }
  /// The times of the looks so far, in seconds.
  std::vector<double> looks_;
  std::optional<Date> change_;
};

TEST_F(RefreshLoopTest, LooksAtIntervalsAndWhenSomethingChanges) {
  RefreshLoop refresh(loop(), look(), {.refresh = Seconds(60), .nextChange = [this] { return change_; }});
  loop().advance(Seconds(10));
  EXPECT_THAT(looks_, IsEmpty()) << "nothing has started it";
  change_ = loop().now() + Seconds(75);
  refresh.refreshNow();
  loop().advance(Seconds(74));
  EXPECT_THAT(looks_, ElementsAre(10, 70));
  loop().advance(Seconds(1));
  EXPECT_THAT(looks_, ElementsAre(10, 70, 85)) << "the change at 85 s";
  // A change that is due for ever does not make it spin.
  loop().advance(Seconds(3));
  EXPECT_THAT(looks_, ElementsAre(10, 70, 85, 86, 87, 88));
}

TEST_F(RefreshLoopTest, FollowsAnotherIntervalAtOnce) {
  RefreshLoop refresh(loop(), look(Seconds(5)), {.refresh = Seconds(60)});
  refresh.setRefresh(Seconds(50));
  loop().advance(Seconds(100));
  EXPECT_THAT(looks_, IsEmpty()) << "nothing has started it";
  refresh.refreshNow();
  loop().advance(Seconds(1));
  refresh.setRefresh(Seconds(600));
  loop().advance(Seconds(104));
  EXPECT_THAT(looks_, ElementsAre(100));
  refresh.setRefresh(Seconds(120));
  loop().advance(Seconds(20));
  EXPECT_THAT(looks_, ElementsAre(100, 225));
  loop().advance(Seconds(105));
  refresh.setRefresh(Seconds(60));
  loop().advance(Seconds(1));
  EXPECT_THAT(looks_, ElementsAre(100, 225, 330)) << "it is due already";
}

TEST_F(RefreshLoopTest, LooksAgainAfterALookThatWasTooEarly) {
  {
    RefreshLoop refresh(loop(), look(Seconds(5)), {.refresh = Seconds(60)});
    refresh.refreshNow();
    loop().advance(Seconds(2));
    refresh.refreshNow();
    refresh.refreshNow();
    EXPECT_THAT(looks_, ElementsAre(0)) << "one look at a time";
    loop().advance(Seconds(70));
    EXPECT_THAT(looks_, ElementsAre(0, 5, 70)) << "60 s after the end of the second";
  }
  loop().advance(Seconds(600));
  EXPECT_THAT(looks_, ElementsAre(0, 5, 70)) << "the running look ends after the loop does";
}

TEST_F(RefreshLoopTest, KnowsWhenIncidentsBeginAndEnd) {
  const Date now{Seconds(1000)};
  const auto lineWith = [](std::optional<Date> start, std::optional<Date> end) -> TransitLineItems {
    const auto incident = std::make_shared<const TransitIncidentRecord>(
        TransitIncidentFields{.startDate = start, .endDate = end});
    return {std::make_shared<const TransitLineRecord>(TransitLineFields{}, TransitIncidents{incident})};
  };
  EXPECT_EQ(nextChange(lineWith({}, {}), {}, now), std::nullopt);
  EXPECT_EQ(nextChange(lineWith(now - Seconds(9), now - Seconds(1)), {}, now), std::nullopt);
  EXPECT_EQ(nextChange(lineWith(now + Seconds(9), now + Seconds(20)), {}, now), now + Seconds(9));
  EXPECT_GT(nextChange(lineWith(now - Seconds(9), now + Seconds(20)), {}, now), now + Seconds(20));
  const FeedState failed{.feed = "Metro",
                         .kind = FeedState::Kind::kept,
                         .since = now - kAlertsGrace + Seconds(5),
                         .failures = 1,
                         .failed = now};
  EXPECT_EQ(nextChange({}, std::vector{failed}, now), nextUpdate(std::vector{failed}, now));
}

}  // namespace
}  // namespace linewatch::app

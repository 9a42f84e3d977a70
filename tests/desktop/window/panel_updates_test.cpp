#include "desktop/window/panel_updates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulation/platform_test.h"

namespace linewatch::desktop {
namespace {

/// Fetches end when the test calls `end`.
class PanelUpdatesTest : public PlatformTest {
 protected:
  PanelUpdatesTest() { updates_.setInSight(true); }

  void end(bool failed) { updates_.fetchDidEnd(failed); }
  /// How many fetches start within the time, each of which fails.
  int failuresWithin(double seconds) {
    const int before = asked_;
    for (double passed = 0; passed < seconds; ++passed) {
      const int askedBefore = asked_;
      platform_->advance(1);
      if (asked_ != askedBefore) end(/*failed=*/true);
    }
    return asked_ - before;
  }

  int asked_ = 0;
  PanelUpdates updates_{[this] {
    ++asked_;
    updates_.fetchDidBegin();
  }};
};

TEST_F(PanelUpdatesTest, AFailedFetchCountsOnceForAllWhoWait) {
  updates_.userDidAsk();
  for (int i = 0; i < 8; ++i) updates_.userDidAsk();
  EXPECT_EQ(asked_, 1);
  end(true);
  EXPECT_EQ(failuresWithin(70), 1);
  EXPECT_EQ(failuresWithin(70), 0) << "the intervals grow";
  EXPECT_EQ(failuresWithin(12 * 3600), 27) << "up to half an hour";
  updates_.userDidAsk();
  end(true);
  EXPECT_EQ(failuresWithin(70), 1) << "the user resets the interval";
  updates_.userDidAsk();
  end(false);
  EXPECT_EQ(failuresWithin(4000), 0);
}

TEST_F(PanelUpdatesTest, RetriesSoonAfterTheConnectionReturns) {
  updates_.userDidAsk();
  updates_.connectionDidReturn();
  EXPECT_EQ(asked_, 1);
  end(true);
  EXPECT_EQ(failuresWithin(10), 1) << "the failed fetch began without a connection";
  EXPECT_EQ(failuresWithin(50), 0) << "only once";
  EXPECT_EQ(failuresWithin(20), 1);
  updates_.connectionDidReturn();
  EXPECT_EQ(asked_, 4);
  end(true);
  EXPECT_EQ(failuresWithin(10), 1) << "the connection was not ready yet";
}

TEST_F(PanelUpdatesTest, FetchesAgainAfterAChangeDuringAFetch) {
  updates_.fetchDidBegin();
  updates_.favoritesDidChange();
  updates_.favoritesDidChange();
  EXPECT_EQ(asked_, 0);
  end(false);
  EXPECT_EQ(asked_, 1);
  end(false);
  EXPECT_EQ(asked_, 1);
  updates_.favoritesDidChange();
  EXPECT_EQ(asked_, 2);
}

TEST_F(PanelUpdatesTest, FetchesNothingWhileHidden) {
  updates_.userDidAsk();
  end(true);
  updates_.setInSight(false);
  EXPECT_EQ(failuresWithin(4000), 0);
  updates_.connectionDidReturn();
  updates_.favoritesDidChange();
  updates_.fetchDidBegin();
  updates_.favoritesDidChange();
  end(true);
  EXPECT_EQ(asked_, 1);
}

}  // namespace
}  // namespace linewatch::desktop

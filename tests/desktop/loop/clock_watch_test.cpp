#include "desktop/loop/clock_watch.h"

#include <gtest/gtest.h>

namespace linewatch::desktop {
namespace {

TEST(ClockWatchTest, RecognisesSleepAndChangesOfTheClock) {
  struct Row {
    const char* what;
    /// How much each clock advanced.
    double realTime, sinceStart, awake;
    bool hasJumped;
  };
  for (const Row& row :
       {Row{"nothing", 0, 0, 0, false}, Row{"a day", 86400, 86400, 86400, false},
        Row{"a clock that runs a little slow", 86410, 86400, 86400, false},
        Row{"a few seconds of sleep", 64, 64, 60, false}, Row{"ten seconds of sleep", 70, 70, 60, true},
        Row{"set forward", 3660, 60, 60, true}, Row{"set back", -3540, 60, 60, true},
        Row{"asleep while the clock was set back", 60, 3660, 60, true}}) {
    const ClockReading before{Seconds(1e9), Seconds(5000), Seconds(4000)};
    const ClockReading after{before.realTime + Seconds(row.realTime),
                             before.sinceStart + Seconds(row.sinceStart), before.awake + Seconds(row.awake)};
    EXPECT_EQ(hasJumped(before, after), row.hasJumped) << row.what;
  }
  EXPECT_FALSE(hasJumped(readClocks(), readClocks()));
}

}  // namespace
}  // namespace linewatch::desktop

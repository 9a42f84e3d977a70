#include "desktop/loop/qt_main_loop.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "desktop/loop/clock_watch.h"

namespace linewatch::desktop {
namespace {

using testing::ElementsAre;

class QtMainLoopTest : public testing::Test {
 protected:
  /// Runs Qt's event loop until `quitting` fires.
  void run() { loop_.exec(); }
  std::function<void()> noting(int number) {
    return [this, number] { noted_.push_back(number); };
  }
  std::function<void()> quitting() {
    return [this] { loop_.quit(); };
  }

  static QCoreApplication& application() {
    static int argc = 0;
    static QCoreApplication application(argc, nullptr);
    return application;
  }
  QCoreApplication& application_ = application();
  QEventLoop loop_;
  QtMainLoop mainLoop_;
  std::vector<int> noted_;
};

TEST_F(QtMainLoopTest, TimersWithToleranceFireTogether) {
  const auto secondAfter = [](Seconds interval) {
    return std::ceil((readClocks().sinceStart + interval).count());
  };
  bool isTurnOver = false;
  const auto first = [&] { mainLoop_.dispatchAsync([&] { isTurnOver = true; }); };
  const auto second = [&] {
    EXPECT_FALSE(isTurnOver) << "both timers fire in one turn of the loop";
    loop_.quit();
  };
  std::vector<std::shared_ptr<Timer>> timers;
  double fires = 0;
  // Again if a whole second has passed between the two timers.
  do {
    for (const auto& timer : timers) timer->invalidate();
    fires = secondAfter(Seconds(0.001));
    timers = {mainLoop_.scheduleTimer(Seconds(0.001), false, first),
              mainLoop_.scheduleTimer(Seconds(0.002), false, second)};
    for (const auto& timer : timers) timer->setTolerance(Seconds(5));
  } while (secondAfter(Seconds(0.002)) != fires);
  run();
  EXPECT_TRUE(std::ranges::none_of(timers, &Timer::isValid));
}

TEST_F(QtMainLoopTest, AcceptsInvalidIntervals) {
  mainLoop_.scheduleTimer(Seconds(std::numeric_limits<double>::quiet_NaN()), false, noting(1));
  mainLoop_.scheduleTimer(Seconds(-3), false, noting(2));
  mainLoop_.scheduleTimer(Seconds(std::numeric_limits<double>::infinity()), false, noting(3));
  mainLoop_.scheduleTimer(Seconds(0), false, quitting());
  run();
  EXPECT_THAT(noted_, ElementsAre(1, 2));
}

TEST_F(QtMainLoopTest, ATimerMayOutliveTheLoop) {
  std::shared_ptr<Timer> timer;
  {
    QtMainLoop shortLived(Date(Seconds(1000)));
    EXPECT_GE(shortLived.now(), Date(Seconds(1000)));
    EXPECT_LT(shortLived.now(), Date(Seconds(1060)));
    timer = shortLived.scheduleTimer(Seconds(0.001), true, [] { FAIL(); });
  }
  EXPECT_FALSE(timer->isValid());
  timer->setTolerance(Seconds(1));
  timer->invalidate();
}

// The undefined-behaviour sanitizer opens a pipe to inspect an object of a type that it has not seen. It
// reports the object as invalid when no file can be opened.
#ifdef __clang__
#if __has_feature(undefined_behavior_sanitizer)
#define LINEWATCH_NEEDS_FILES
#endif
#endif

TEST(QtMainLoopDeathTest, ReportsWhyItCannotMakeATimer) {
#ifdef LINEWATCH_NEEDS_FILES
  GTEST_SKIP() << "the sanitizer needs files";
#endif
  const auto keepTimeWithoutFiles = [] {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NOFILE, &none);
    QtMainLoop loop;
  };
  EXPECT_DEATH(keepTimeWithoutFiles(), "cannot make a timer: Too many open files");
}

}  // namespace
}  // namespace linewatch::desktop

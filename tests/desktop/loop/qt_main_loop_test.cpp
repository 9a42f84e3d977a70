#include "desktop/loop/qt_main_loop.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

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
  std::vector<Date> fired;
  const auto note = [&] {
    fired.push_back(mainLoop_.now());
    if (fired.size() == 2) loop_.quit();
  };
  mainLoop_.scheduleTimer(Seconds(0.001), false, note)->setTolerance(Seconds(5));
  mainLoop_.scheduleTimer(Seconds(0.002), false, note)->setTolerance(Seconds(5));
  run();
  ASSERT_EQ(fired.size(), 2U);
  // Both on one whole second, or on adjacent ones if a second ended between the calls.
  const double apart = (fired[1] - fired[0]).count();
  EXPECT_LT(std::abs(apart - std::round(apart)), 0.2);
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

TEST(QtMainLoopDeathTest, SaysWhyItCannotMakeATimer) {
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

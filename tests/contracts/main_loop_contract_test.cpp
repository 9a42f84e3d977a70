#include <QCoreApplication>
#include <QEventLoop>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contracts/subject.h"
#include "desktop/loop/qt_main_loop.h"
#include "platform/main_loop.h"
#include "simulation/simulated_platform.h"

namespace linewatch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A main loop and what makes it turn.
class TurningLoop {
 public:
  virtual ~TurningLoop() = default;
  virtual MainLoop& loop() = 0;
  /// Lets the loop run, and time pass, until `isDone`.
  virtual void runUntil(const std::function<bool()>& isDone) = 0;
  /// Runs `action` on another thread, or as if.
  virtual void runElsewhere(std::function<void()> action) = 0;
};

class VirtualLoop final : public TurningLoop {
 public:
  MainLoop& loop() override { return platform_->mainLoop(); }
  void runUntil(const std::function<bool()>& isDone) override {
    for (int i = 0; i < 10'000 && !isDone(); ++i) platform_->advance(0.001);
  }
  void runElsewhere(std::function<void()> action) override {
    platform_->mainLoop().runElsewhere(std::move(action));
    platform_->runUntilIdle();
  }

 private:
  std::shared_ptr<simulation::SimulatedPlatform> platform_ = simulation::SimulatedPlatform::make();
};

class QtLoop final : public TurningLoop {
 public:
  QtLoop() { application(); }
  MainLoop& loop() override { return loop_; }
  void runUntil(const std::function<bool()>& isDone) override {
    while (!isDone()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  void runElsewhere(std::function<void()> action) override { std::thread(std::move(action)).join(); }

 private:
  static QCoreApplication& application() {
    static int argc = 0;
    static QCoreApplication application(argc, nullptr);
    return application;
  }

  desktop::QtMainLoop loop_;
};

class MainLoopContract : public testing::TestWithParam<Subject<TurningLoop>> {
 protected:
  MainLoop& loop() { return turning_->loop(); }
  std::function<void()> noting(int number) {
    return [this, number] { noted_.push_back(number); };
  }
  void runUntilNoted(std::size_t count) {
    turning_->runUntil([this, count] { return noted_.size() >= count; });
  }

  std::shared_ptr<TurningLoop> turning_ = GetParam().make();
  std::vector<int> noted_;
};

TEST_P(MainLoopContract, RunsWhatIsDispatchedLaterInOrder) {
  EXPECT_TRUE(loop().isMainThread());
  loop().dispatchAsync([this] {
    noted_.push_back(1);
    loop().dispatchAsync(noting(3));
  });
  loop().dispatchAsync(noting(2));
  EXPECT_THAT(noted_, IsEmpty());
  runUntilNoted(3);
  EXPECT_THAT(noted_, ElementsAre(1, 2, 3));
}

TEST_P(MainLoopContract, BringsWhatOthersDispatchToTheMainThread) {
  bool wasElsewhere = false;
  bool isOnMain = false;
  turning_->runElsewhere([&] {
    wasElsewhere = !loop().isMainThread();
    loop().dispatchAsync([&] {
      isOnMain = loop().isMainThread();
      noted_.push_back(1);
    });
  });
  runUntilNoted(1);
  EXPECT_TRUE(wasElsewhere);
  EXPECT_TRUE(isOnMain);
}

TEST_P(MainLoopContract, ATimerFiresOnceWhenDueAlsoWhenNobodyHoldsIt) {
  const Date start = loop().now();
  std::vector<Date> fired;
  loop().scheduleTimer(Seconds(0.02), false, [&] {
    fired.push_back(loop().now());
    noted_.push_back(2);
  });
  const auto held = loop().scheduleTimer(Seconds(0.01), false, noting(1));
  EXPECT_TRUE(held->isValid());
  EXPECT_THAT(noted_, IsEmpty());
  runUntilNoted(2);
  EXPECT_THAT(noted_, ElementsAre(1, 2));
  EXPECT_FALSE(held->isValid());
  ASSERT_EQ(fired.size(), 1U);
  EXPECT_GE((fired[0] - start).count(), 0.02 - 1e-6);
}

TEST_P(MainLoopContract, AnInvalidatedTimerNeverFires) {
  const auto stopped = loop().scheduleTimer(Seconds(0.001), true, noting(7));
  const auto stoppedByAnother = loop().scheduleTimer(Seconds(0.002), false, noting(8));
  loop().scheduleTimer(Seconds(0.001), false, [&] {
    stoppedByAnother->invalidate();
    stoppedByAnother->invalidate();
  });
  loop().scheduleTimer(Seconds(0.01), false, noting(1));
  stopped->invalidate();
  EXPECT_FALSE(stopped->isValid());
  runUntilNoted(1);
  EXPECT_THAT(noted_, ElementsAre(1));
}

TEST_P(MainLoopContract, ARepeatingTimerGoesOnUntilItsOwnActionEndsIt) {
  std::shared_ptr<Timer> timer;
  timer = loop().scheduleTimer(Seconds(0.002), true, [&] {
    noted_.push_back(static_cast<int>(noted_.size()));
    if (noted_.size() == 3) timer->invalidate();
    EXPECT_EQ(timer->isValid(), noted_.size() < 3);
  });
  timer->setTolerance(Seconds(0));
  runUntilNoted(3);
  loop().scheduleTimer(Seconds(0.01), false, noting(-1));
  runUntilNoted(4);
  EXPECT_THAT(noted_, ElementsAre(0, 1, 2, -1));
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, MainLoopContract,
    testing::Values(Subject<TurningLoop>{"Simulation", [] { return std::make_shared<VirtualLoop>(); }},
                    Subject<TurningLoop>{"Desktop", [] { return std::make_shared<QtLoop>(); }}),
    nameOfSubject<TurningLoop>);

}  // namespace
}  // namespace linewatch

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
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

/// A main loop that a test can run.
class TurningLoop {
 public:
  virtual ~TurningLoop() = default;
  virtual MainLoop& loop() = 0;
  /// Runs the loop, and lets time pass, until `isDone` or for ten seconds at most.
  virtual void runUntil(const std::function<bool()>& isDone) = 0;
  /// Runs `action` on another thread, which may be simulated.
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
    const QDeadlineTimer deadline(std::chrono::seconds(10));
    QTimer wakeUp;  // so that waiting for events ends at the deadline
    wakeUp.start(std::chrono::seconds(1));
    while (!isDone() && !deadline.hasExpired()) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
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
  std::function<void()> recording(int number) {
    return [this, number] { recorded_.push_back(number); };
  }
  void runUntilRecorded(std::size_t count) {
    turning_->runUntil([this, count] { return recorded_.size() >= count; });
  }

  std::shared_ptr<TurningLoop> turning_ = GetParam().make();
  std::vector<int> recorded_;
};

TEST_P(MainLoopContract, DispatchedActionsRunInOrderAfterTheCall) {
  EXPECT_TRUE(loop().isMainThread());
  loop().dispatchAsync([this] {
    recorded_.push_back(1);
    loop().dispatchAsync(recording(3));
  });
  loop().dispatchAsync(recording(2));
  EXPECT_THAT(recorded_, IsEmpty());
  runUntilRecorded(3);
  EXPECT_THAT(recorded_, ElementsAre(1, 2, 3));
}

TEST_P(MainLoopContract, ActionsDispatchedByOtherThreadsRunOnTheMainThread) {
  bool wasElsewhere = false;
  bool isOnMain = false;
  turning_->runElsewhere([&] {
    wasElsewhere = !loop().isMainThread();
    loop().dispatchAsync([&] {
      isOnMain = loop().isMainThread();
      recorded_.push_back(1);
    });
  });
  runUntilRecorded(1);
  EXPECT_TRUE(wasElsewhere);
  EXPECT_TRUE(isOnMain);
}

TEST_P(MainLoopContract, ATimerFiresOnceWhenDueEvenIfNobodyOwnsIt) {
  const Date start = loop().now();
  std::vector<Date> fired;
  loop().scheduleTimer(Seconds(0.02), false, [&] {
    fired.push_back(loop().now());
    recorded_.push_back(2);
  });
  const auto held = loop().scheduleTimer(Seconds(0.01), false, recording(1));
  EXPECT_TRUE(held->isValid());
  EXPECT_THAT(recorded_, IsEmpty());
  runUntilRecorded(2);
  EXPECT_THAT(recorded_, ElementsAre(1, 2));
  EXPECT_FALSE(held->isValid());
  ASSERT_EQ(fired.size(), 1U);
  EXPECT_GE((fired[0] - start).count(), 0.02 - 1e-6);
}

TEST_P(MainLoopContract, AnInvalidatedTimerNeverFires) {
  const auto stopped = loop().scheduleTimer(Seconds(0.001), true, recording(7));
  const auto stoppedByAnother = loop().scheduleTimer(Seconds(0.002), false, recording(8));
  loop().scheduleTimer(Seconds(0.001), false, [&] {
    stoppedByAnother->invalidate();
    stoppedByAnother->invalidate();
  });
  loop().scheduleTimer(Seconds(0.01), false, recording(1));
  stopped->invalidate();
  EXPECT_FALSE(stopped->isValid());
  runUntilRecorded(1);
  EXPECT_THAT(recorded_, ElementsAre(1));
}

TEST_P(MainLoopContract, ARepeatingTimerFiresUntilItsOwnActionInvalidatesIt) {
  std::shared_ptr<Timer> timer;
  timer = loop().scheduleTimer(Seconds(0.002), true, [&] {
    recorded_.push_back(static_cast<int>(recorded_.size()));
    if (recorded_.size() == 3) timer->invalidate();
    EXPECT_EQ(timer->isValid(), recorded_.size() < 3);
  });
  timer->setTolerance(Seconds(0));
  runUntilRecorded(3);
  loop().scheduleTimer(Seconds(0.01), false, recording(-1));
  runUntilRecorded(4);
  EXPECT_THAT(recorded_, ElementsAre(0, 1, 2, -1));
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, MainLoopContract,
    testing::Values(Subject<TurningLoop>{"Simulation", [] { return std::make_shared<VirtualLoop>(); }},
                    Subject<TurningLoop>{"Desktop", [] { return std::make_shared<QtLoop>(); }}),
    nameOfSubject<TurningLoop>);

}  // namespace
}  // namespace linewatch

#include "feeds/background_queue.h"

#include <algorithm>
#include <future>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace linewatch {
namespace {

using testing::ElementsAre;

TEST(BackgroundQueue, RunsEachActionOnceInOrderOnOneThread) {
  std::vector<int> order;
  std::vector<std::thread::id> threads;
  {
    BackgroundQueue queue;
    for (int i = 0; i < 100; ++i) {
      queue.post([&, i] {
        order.push_back(i);
        threads.push_back(std::this_thread::get_id());
      });
    }
  }
  ASSERT_EQ(order.size(), 100U);
  EXPECT_TRUE(std::ranges::is_sorted(order));
  EXPECT_EQ(std::ranges::count(threads, threads[0]), 100);
  EXPECT_NE(threads[0], std::this_thread::get_id());
}

TEST(BackgroundQueue, RunsNothingAfterFinish) {
  BackgroundQueue queue;
  std::vector<int> ran;
  queue.post([&] { ran.push_back(1); });
  queue.finish();
  queue.post([&] { ran.push_back(2); });
  queue.finish();
  EXPECT_THAT(ran, ElementsAre(1));
}

TEST(BackgroundQueue, MayBeFinishedOnItsOwnThread) {
  std::promise<void> mayStart;
  std::promise<void> drained;
  auto queue = std::make_shared<BackgroundQueue>();
  BackgroundQueue* const raw = queue.get();
  // The last reference goes on the queue's thread, with an action still waiting.
  queue->post([&, held = queue]() mutable {
    mayStart.get_future().wait();
    held.reset();
  });
  raw->post([&] { drained.set_value(); });
  queue.reset();
  mayStart.set_value();
  drained.get_future().wait();
}

}  // namespace
}  // namespace linewatch

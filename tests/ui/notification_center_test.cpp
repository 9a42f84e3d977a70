#include "ui/notification_center.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "shared/object.h"

namespace linewatch::ui {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Observer final : Object {};

TEST(NotificationCenterTest, CallsObserversInOrderUntilTheyAreRemovedOrDestroyed) {
  NotificationCenter center;
  std::vector<std::string> calls;
  auto one = std::make_shared<Observer>();
  auto two = std::make_shared<Observer>();
  center.addObserver(one, "event", [&] {
    calls.push_back("one");
    center.removeObserver(*two);
    center.addObserver(one, "event", [&] { calls.push_back("late"); });
  });
  center.addObserver(two, "event", [&] { calls.push_back("two"); });
  center.addObserver(one, "other", [&] { calls.push_back("other"); });
  center.post("event");
  EXPECT_THAT(calls, ElementsAre("one"));
  calls.clear();
  one.reset();
  center.post("event");
  center.post("other");
  EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
}  // namespace linewatch::ui

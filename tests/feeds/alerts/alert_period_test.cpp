#include "feeds/alerts/alert_period.h"

#include <vector>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(ShownPeriod, IsTheRunningOneElseTheNextElseTheLast) {
  using Use = AlertPeriod::Use;
  const auto at = [](double seconds) { return Date(Seconds(seconds)); };
  struct Row {
    const char* name;
    std::vector<AlertPeriod> periods;
    double now;
    ShownPeriod expected;
  };
  const std::uint64_t never = ~std::uint64_t{0};
  const std::vector<AlertPeriod> days = {{Use::show, 100, 200}, {Use::show, 500, 600}, {Use::show, 300, 400}};
  for (const Row& row : {
           Row{"none", {}, 50, {}},
           Row{"first to come", days, 50, {at(100), at(200)}},
           Row{"starts now", days, 300, {at(300), at(400)}},
           Row{"ends now", days, 400, {at(500), at(600)}},
           Row{"between", days, 250, {at(300), at(400)}},
           Row{"all past", days, 700, {at(500), at(600)}},
           Row{"open start", {{Use::show, 0, 200}}, 50, {{}, at(200)}},
           Row{"open end", {{Use::show, 10, 0}}, 50, {at(10), {}}},
           Row{"end of all bits", {{Use::show, 10, never}}, 50, {at(10), {}}},
           Row{"end past 2100", {{Use::show, 10, 4'200'000'000}}, 50, {at(10), {}}},
           Row{"end before 2100", {{Use::show, 10, 4'000'000'000}}, 50, {at(10), at(4'000'000'000)}},
           Row{"two that run",
               {{Use::show, 10, 90}, {Use::show, 20, 300}, {Use::show, 0, 80}},
               50,
               {at(20), at(300)}},
           Row{"when service is affected is not when to show", {{Use::affect, 60, 70}}, 50, {}},
           Row{"only when to show", {{Use::affect, 60, 70}, {Use::show, 40, 80}}, 50, {at(40), at(80)}},
       }) {
    EXPECT_EQ(periodToShow(row.periods, at(row.now)), row.expected) << row.name;
  }
}

}  // namespace
}  // namespace linewatch

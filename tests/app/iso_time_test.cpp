#include "app/iso_time.h"

#include <gtest/gtest.h>

namespace linewatch::app {
namespace {

TEST(IsoTimeTest, ReadsTimesWithAZone) {
  EXPECT_EQ(parseTime("2026-11-24T08:00:00Z"), Date(Seconds(1795507200)));
  EXPECT_EQ(parseTime("2026-11-24T09:30+01:30"), Date(Seconds(1795507200)));
  for (const char* text :
       {"", "2026-11-24", "2026-02-30T00:00:00Z", "2026-11-24T24:00:00Z", "2026-11-24T08:00:00"}) {
    EXPECT_EQ(parseTime(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace linewatch::app

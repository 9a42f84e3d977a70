#include "app/iso_time.h"

#include <gtest/gtest.h>

namespace linewatch::app {
namespace {

TEST(IsoTimeTest, ReadsTimesWithAZone) {
  for (const char* text : {"2026-11-24T08:00:00Z", "2026-11-24 08:00Z", "2026-11-24T08:00:00.75Z",
                           "2026-11-24T09:30+01:30", "2026-11-24T03:00:00-0500"})
    EXPECT_EQ(parseTime(text), Date(Seconds(1795507200))) << text;
  for (const char* text : {"", "2026-11-24", "2026-02-30T00:00:00Z", "2026-11-24T24:00:00Z",
                           "2026-11-24T08:00:00", "2026-11-24T08:00:00.Z", "2026-11-24T08:00:00z",
                           "2026-11-24T08:00:00Z ", "2026-1-24T08:00:00Z", "+026-11-24T08:00:00Z",
                           "2026-11-24T08:00:00+1:00", "2026-11-24T08:00:00+24:00", "2026-11-24T08:60:00Z"}) {
    EXPECT_EQ(parseTime(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace linewatch::app

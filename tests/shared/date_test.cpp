#include "shared/date.h"

#include <gtest/gtest.h>

namespace linewatch {
namespace {

TEST(Date, DescribesItselfForLogs) {
  struct Row {
    double seconds;
    const char* text;
  };
  for (const Row& row : {
           Row{0, "1970-01-01T00:00:00Z"},
           Row{1795507200, "2026-11-24T08:00:00Z"},
           Row{1795507200.25, "2026-11-24T08:00:00.25Z"},
           Row{1795507199.9999, "2026-11-24T08:00:00Z"},
           Row{-0.001, "1969-12-31T23:59:59.999Z"},
           Row{951782400, "2000-02-29T00:00:00Z"},
           Row{1e300, "1e+300"},
           Row{-1e12, "-1e+12"},
       }) {
    EXPECT_EQ(description(Date(Seconds(row.seconds))), row.text);
  }
}

}  // namespace
}  // namespace linewatch

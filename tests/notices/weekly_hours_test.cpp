#include "notices/weekly_hours.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shared/failure.h"

namespace linewatch::notices {
namespace {

/// A moment of the week in which 1970-01-05 was the Monday. `weekday` counts from Monday, 0.
Moment at(int weekday, int hour, int minute = 0) {
  return {.date = Date(Seconds((4.0 + weekday) * 86400 + hour * 3600 + minute * 60)), .utcOffset = {}};
}

TEST(WeeklyHoursTest, PrintsWhatItReadsInItsUsualForm) {
  const std::pair<const char*, const char*> kTexts[] = {
      {"always", "always"},
      {"weekdays 7 to 9, 17 to 19", "weekdays 7 to 9, 17 to 19"},
      {"Weekdays 7-9,17:30-19", "weekdays 7 to 9, 17:30 to 19"},
      {"7:05 to 9", "7:05 to 9"},
      {"monday, WED 7 to 9; weekends", "mon, wed 7 to 9, weekends 0 to 24"},
      {"fri to sun 22 to 0", "weekends, fri 22 to 24"},
      {"sat to mon 23 to 1", "weekends, mon 23 to 1"}};
  for (const auto& [text, usual] : kTexts) {
    const auto hours = WeeklyHours::parse(text);
    ASSERT_TRUE(hours) << text << ": " << sentenceOf(hours.error());
    EXPECT_EQ(hours->text(), usual);
    EXPECT_EQ(*WeeklyHours::parse(usual), *hours) << text;
  }
}

TEST(WeeklyHoursTest, NamesTheWordThatItCannotRead) {
  const std::pair<const char*, const char*> kTexts[] = {
      {"", "there are no hours"},
      {"blursday 7 to 9", "\"blursday\""},
      {"7", "after \"7\""},
      {"7 to 25", "\"7 to\" needs a time"},
      {"7:5 to 9", "\"7:5\""},
      {"7 to 7", "\"7 to 7\" is no span"},
      {"weekdays to fri 7 to 9", "\"weekdays to\" needs a day"},
      {"always 7 to 9", "\"always\""}};
  for (const auto& [text, why] : kTexts) {
    const auto hours = WeeklyHours::parse(text);
    ASSERT_FALSE(hours) << text;
    EXPECT_THAT(sentenceOf(hours.error()), testing::HasSubstr(why));
  }
}

TEST(WeeklyHoursTest, ContainsTheMinutesOfItsSpansInLocalTime) {
  const WeeklyHours work = *WeeklyHours::parse("weekdays 7 to 9, 17 to 19");
  EXPECT_FALSE(work.contains(at(0, 6, 59)));
  EXPECT_TRUE(work.contains(at(0, 7)));
  EXPECT_FALSE(work.contains(at(0, 9)));
  EXPECT_TRUE(work.contains(at(4, 18, 59)));
  EXPECT_FALSE(work.contains(at(5, 8)));
  Moment eastern = at(0, 6);
  eastern.utcOffset = Seconds(3600);
  EXPECT_TRUE(work.contains(eastern));
  const WeeklyHours sundayNight = *WeeklyHours::parse("sun 22 to 7");
  EXPECT_TRUE(sundayNight.contains(at(6, 23)));
  EXPECT_TRUE(sundayNight.contains(at(0, 6, 59)));
  EXPECT_FALSE(sundayNight.contains(at(0, 7)));
  EXPECT_FALSE(sundayNight.contains(at(6, 6)));
}

}  // namespace
}  // namespace linewatch::notices

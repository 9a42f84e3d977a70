#include "shared/date.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "shared/value.h"

namespace linewatch {

namespace {

/// Seconds. Dates further from 1970, after about the year 9892, are not shown as calendar dates.
constexpr double kFarthestCalendarDate = 2.5e11;

/// ".25", or nothing when the fraction is 0.
std::string fractionText(std::chrono::milliseconds fraction) {
  if (fraction.count() == 0) return {};
  std::array<char, 8> text;
  std::snprintf(text.data(), text.size(), ".%03d", static_cast<int>(fraction.count()));
  std::string trimmed(text.data());
  return trimmed.erase(trimmed.find_last_not_of('0') + 1);
}

}  // namespace

std::string description(Date date) {
  using namespace std::chrono;
  const double seconds = secondsOf(date);
  if (!(std::fabs(seconds) < kFarthestCalendarDate)) return Value(seconds).description();
  const sys_time<milliseconds> time(milliseconds(std::llround(seconds * 1000)));
  const auto day = floor<days>(time);
  const year_month_day calendar(day);
  const hh_mm_ss<milliseconds> clock(time - day);
  std::array<char, 48> text;
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(calendar.year()),
                static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data() + fractionText(clock.subseconds()) + "Z";
}

}  // namespace linewatch

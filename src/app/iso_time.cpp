#include "app/iso_time.h"

#include <chrono>
#include <cstddef>
#include <string_view>

namespace linewatch::app {

namespace {

/// Takes a text apart from left to right. Without std::regex, which takes longer to compile one pattern than
/// the rest of `status` takes.
class TextScanner {
 public:
  explicit TextScanner(std::string_view text) : rest_(text) {}

  /// A number of exactly so many digits; 0 if the text has another part here.
  int number(std::size_t digits) {
    int value = 0;
    for (; digits > 0; --digits) {
      const char digit = oneOf("0123456789");
      isValid_ = isValid_ && digit != 0;
      value = digit != 0 ? value * 10 + (digit - '0') : 0;
    }
    return value;
  }
  void expect(std::string_view characters) { isValid_ = oneOf(characters) != 0 && isValid_; }
  /// One of the characters; 0 if the text has another one here.
  char oneOf(std::string_view characters) {
    if (rest_.empty() || characters.find(rest_.front()) == std::string_view::npos) return 0;
    const char taken = rest_.front();
    rest_.remove_prefix(1);
    return taken;
  }
  /// Whether every part was there, and nothing is left.
  bool isDone() const { return isValid_ && rest_.empty(); }

 private:
  std::string_view rest_;
  bool isValid_ = true;
};

struct TimeParts {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, offsetHours = 0, offsetMinutes = 0;
  bool isAhead = false;
};

int scanSeconds(TextScanner& text) {
  const int seconds = text.number(2);
  if (text.oneOf(".") == 0) return seconds;
  text.number(1);
  while (text.oneOf("0123456789") != 0) {
  }
  return seconds;
}

std::optional<TimeParts> scanTime(std::string_view whole) {
  TextScanner text(whole);
  TimeParts parts;
  parts.year = text.number(4);
  text.expect("-");
  parts.month = text.number(2);
  text.expect("-");
  parts.day = text.number(2);
  text.expect("T ");
  parts.hour = text.number(2);
  text.expect(":");
  parts.minute = text.number(2);
  if (text.oneOf(":") != 0) parts.second = scanSeconds(text);
  if (text.oneOf("Z") == 0) {
    parts.isAhead = text.oneOf("+") != 0;
    if (!parts.isAhead) text.expect("-");
    parts.offsetHours = text.number(2);
    text.oneOf(":");
    parts.offsetMinutes = text.number(2);
  }
  return text.isDone() ? std::optional(parts) : std::nullopt;
}

}  // namespace

std::optional<Date> parseTime(const std::string& text) {
  const auto parts = scanTime(text);
  if (!parts) return std::nullopt;
  const std::chrono::year_month_day day{std::chrono::year(parts->year),
                                        std::chrono::month(static_cast<unsigned>(parts->month)),
                                        std::chrono::day(static_cast<unsigned>(parts->day))};
  if (!day.ok() || parts->hour > 23 || parts->minute > 59 || parts->second > 60 || parts->offsetHours > 23 ||
      parts->offsetMinutes > 59)
    return std::nullopt;
  const auto local = std::chrono::sys_days(day) + std::chrono::hours(parts->hour) +
                     std::chrono::minutes(parts->minute) + std::chrono::seconds(parts->second);
  const auto offset = std::chrono::hours(parts->offsetHours) + std::chrono::minutes(parts->offsetMinutes);
  return Date(parts->isAhead ? local - offset : local + offset);
}

}  // namespace linewatch::app

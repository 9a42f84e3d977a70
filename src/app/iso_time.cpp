#include "app/iso_time.h"

#include <chrono>
#include <regex>

namespace linewatch::app {

namespace {

std::optional<int> number(const std::ssub_match& digits) {
  return digits.matched ? std::optional(std::stoi(digits.str())) : std::nullopt;
}

}  // namespace

std::optional<Date> parseTime(const std::string& text) {
  static const std::regex kTime(
      R"((\d{4})-(\d\d)-(\d\d)[T ](\d\d):(\d\d)(?::(\d\d)(?:\.\d+)?)?(?:Z|([+-])(\d\d):?(\d\d)))");
  std::smatch parts;
  if (!std::regex_match(text, parts, kTime)) return std::nullopt;
  const auto part = [&](std::size_t index) { return number(parts[index]).value_or(0); };
  const std::chrono::year_month_day day{std::chrono::year(part(1)),
                                        std::chrono::month(static_cast<unsigned>(part(2))),
                                        std::chrono::day(static_cast<unsigned>(part(3)))};
  if (!day.ok() || part(4) > 23 || part(5) > 59 || part(6) > 60 || part(8) > 23 || part(9) > 59)
    return std::nullopt;
  const auto local = std::chrono::sys_days(day) + std::chrono::hours(part(4)) +
                     std::chrono::minutes(part(5)) + std::chrono::seconds(part(6));
  const auto offset = std::chrono::hours(part(8)) + std::chrono::minutes(part(9));
  return Date(parts[7] == "-" ? local + offset : local - offset);
}

}  // namespace linewatch::app

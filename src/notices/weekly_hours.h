#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/date.h"
#include "shared/outcome.h"

namespace linewatch::notices {

/// A point in time and the time zone of the user at that time.
struct Moment {
  Date date;
  /// Local time minus UTC.
  Seconds utcOffset{0};
};

/// Hours of the week, such as "weekdays 7 to 9, 17 to 19".
///
/// A text is a list of spans with commas between them. A span is "7 to 9" or "7:30 to 9:15"; one that ends
/// before it begins goes on after midnight. Days stand before their spans and hold until the next days:
/// "daily", "weekdays", "weekends", a day such as "mon" or "monday", or "mon to thu". Without days a span is
/// daily. Days in a row share the next span: "mon, wed 7 to 9". Days at the end are whole days: "weekdays 7
/// to 9, weekends".
class WeeklyHours {
 public:
  /// Minutes since midnight. Days are bits, Monday the lowest.
  struct Span {
    std::uint8_t days = kEveryDay;
    std::uint16_t from = 0;
    /// At most 1440. Not after `from`: a minute of the next day.
    std::uint16_t to = kDay;

    bool operator==(const Span&) const = default;
  };
  static constexpr std::uint8_t kEveryDay = 0x7F;
  static constexpr std::uint16_t kDay = 24 * 60;

  /// Every hour of the week.
  WeeklyHours() = default;

  /// The error says which word cannot be understood. "always" is every hour.
  static Outcome<WeeklyHours> parse(std::string_view text);
  /// A text that `parse` reads back.
  std::string text() const;
  bool contains(const Moment& moment) const;
  bool isAlways() const { return spans_.empty(); }

  bool operator==(const WeeklyHours&) const = default;

 private:
  explicit WeeklyHours(std::vector<Span> spans) : spans_(std::move(spans)) {}

  /// In the order of the text; empty for every hour of the week.
  std::vector<Span> spans_;
};

}  // namespace linewatch::notices

#include "notices/weekly_hours.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <system_error>
#include <utility>

#include "shared/failure.h"

namespace linewatch::notices {

namespace {

struct NamedDays {
  std::string_view name;
  std::uint8_t days;
};
// `text` prints the first name that fits.
constexpr NamedDays kNamedDays[] = {{"daily", WeeklyHours::kEveryDay},
                                    {"weekdays", 0x1F},
                                    {"weekends", 0x60},
                                    {"mon", 1},
                                    {"tue", 2},
                                    {"wed", 4},
                                    {"thu", 8},
                                    {"fri", 16},
                                    {"sat", 32},
                                    {"sun", 64},
                                    {"monday", 1},
                                    {"tuesday", 2},
                                    {"wednesday", 4},
                                    {"thursday", 8},
                                    {"friday", 16},
                                    {"saturday", 32},
                                    {"sunday", 64}};

std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words;
  std::string word;
  const auto end = [&] {
    if (!word.empty()) words.push_back(std::exchange(word, {}));
  };
  for (const char c : text) {
    if (c == ',' || c == ';' || c == ' ' || c == '\t' || c == '-') {
      end();
      if (c == ',' || c == ';') words.emplace_back(",");
      if (c == '-') words.emplace_back("to");
    } else {
      word += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
  }
  end();
  return words;
}

std::optional<std::uint8_t> daysNamed(const std::string& word) {
  const auto* const found = std::ranges::find(kNamedDays, word, &NamedDays::name);
  return found == std::end(kNamedDays) ? std::nullopt : std::optional(found->days);
}

std::optional<std::uint16_t> number(std::string_view text, std::uint16_t most) {
  std::uint16_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, trouble] = std::from_chars(text.data(), end, value);
  return trouble != std::errc() || stop != end || value > most ? std::nullopt : std::optional(value);
}

/// The minute of the day for "7", "7:30" or "24".
std::optional<std::uint16_t> minuteNamed(std::string_view word) {
  const std::size_t colon = word.find(':');
  const auto hour = number(word.substr(0, colon), 24);
  const bool hasMinutes = colon != std::string_view::npos;
  const auto minute = hasMinutes ? number(word.substr(colon + 1), 59) : std::optional<std::uint16_t>(0);
  if (!hour || !minute || (hasMinutes && word.size() - colon != 3)) return std::nullopt;
  const int all = *hour * 60 + *minute;
  return all > WeeklyHours::kDay ? std::nullopt : std::optional(static_cast<std::uint16_t>(all));
}

/// The days from the day of the one bit to the day of the other, around the end of the week if need be.
std::uint8_t daysBetween(std::uint8_t first, std::uint8_t last) {
  std::uint8_t days = first;
  for (std::uint8_t day = first; day != last; days |= day)
    day = static_cast<std::uint8_t>(day == 64 ? 1 : day << 1);
  return days;
}

bool isOneDay(std::uint8_t days) { return (days & (days - 1)) == 0; }

/// Reads the words of a text from the first to the last.
class HoursReader {
 public:
  explicit HoursReader(std::vector<std::string> words) : words_(std::move(words)) {}

  Outcome<std::vector<WeeklyHours::Span>> read() {
    while (next_ < words_.size()) {
      if (auto error = readItem()) return *std::move(error);
    }
    if (hasOpenDays_) takeWholeDays();
    if (spans_.empty()) return wrong("there are no hours in it; say \"weekdays 7 to 9\" or \"always\"");
    return std::move(spans_);
  }

 private:
  static Error wrong(const std::string& why) { return failure(FailureCode::invalid, "", "", why); }
  bool isNext(std::string_view word) const { return next_ < words_.size() && words_[next_] == word; }

  std::optional<Error> readItem() {
    const std::string word = words_[next_++];
    if (word == "," || word == "and") return std::nullopt;
    if (const auto days = daysNamed(word)) return readDays(word, *days);
    return readSpan(word);
  }

  std::optional<Error> readDays(const std::string& word, std::uint8_t first) {
    std::uint8_t days = first;
    if (isNext("to")) {
      const auto last = next_ + 1 < words_.size() ? daysNamed(words_[next_ + 1]) : std::nullopt;
      if (!last || !isOneDay(*last) || !isOneDay(first))
        return wrong("\"" + word + " to\" needs a day on either side, such as \"mon to thu\"");
      days = daysBetween(first, *last);
      next_ += 2;
    }
    days_ = static_cast<std::uint8_t>(hasOpenDays_ ? days_ | days : days);
    hasOpenDays_ = true;
    return std::nullopt;
  }

  std::optional<Error> readSpan(const std::string& word) {
    const auto from = minuteNamed(word);
    if (!from) return wrong("\"" + word + "\" is neither a day nor a time from 0 to 24");
    if (!isNext("to")) return wrong("after \"" + word + "\" there must be \"to\" and a time");
    const auto to = next_ + 1 < words_.size() ? minuteNamed(words_[next_ + 1]) : std::nullopt;
    if (!to) return wrong("\"" + word + " to\" needs a time from 0 to 24, such as \"7 to 9:30\"");
    if (*to == *from || *from == WeeklyHours::kDay)
      return wrong("\"" + word + " to " + words_[next_ + 1] + "\" is no span; a whole day is \"0 to 24\"");
    next_ += 2;
    spans_.push_back({.days = days_, .from = *from, .to = *to == 0 ? WeeklyHours::kDay : *to});
    hasOpenDays_ = false;
    return std::nullopt;
  }

  void takeWholeDays() {
    spans_.push_back({.days = days_});
    hasOpenDays_ = false;
  }

  std::vector<std::string> words_;
  std::size_t next_ = 0;
  std::uint8_t days_ = WeeklyHours::kEveryDay;
  /// Whether no span has come yet for `days_`.
  bool hasOpenDays_ = false;
  std::vector<WeeklyHours::Span> spans_;
};

std::string textOfDays(std::uint8_t days) {
  std::string text;
  for (const NamedDays& named : kNamedDays) {
    if ((days & named.days) != named.days) continue;
    text += (text.empty() ? "" : ", ") + std::string(named.name);
    days = static_cast<std::uint8_t>(days & ~named.days);
  }
  return text;
}

std::string textOfMinute(std::uint16_t minute) {
  const std::string rest = std::to_string(minute % 60);
  return std::to_string(minute / 60) + (minute % 60 == 0 ? "" : (rest.size() == 1 ? ":0" : ":") + rest);
}

}  // namespace

Outcome<WeeklyHours> WeeklyHours::parse(std::string_view text) {
  std::vector<std::string> words = wordsOf(text);
  if (words == std::vector<std::string>{"always"}) return WeeklyHours();
  auto spans = HoursReader(std::move(words)).read();
  if (!spans) return spans.error();
  return WeeklyHours(*std::move(spans));
}

std::string WeeklyHours::text() const {
  if (isAlways()) return "always";
  std::string text;
  std::uint8_t days = kEveryDay;
  for (const Span& span : spans_) {
    if (!text.empty()) text += ", ";
    if (std::exchange(days, span.days) != span.days) text += textOfDays(span.days) + " ";
    text += textOfMinute(span.from) + " to " + textOfMinute(span.to);
  }
  return text;
}

bool WeeklyHours::contains(const Moment& moment) const {
  const double local = secondsOf(moment.date) + moment.utcOffset.count();
  const double dayNumber = std::floor(local / 86400);
  const double minute = std::floor((local - dayNumber * 86400) / 60);
  // 1970-01-01 was a Thursday.
  const int weekday = static_cast<int>(std::fmod(std::fmod(dayNumber + 3, 7) + 7, 7));
  const auto today = static_cast<std::uint8_t>(1U << weekday);
  const auto yesterday = static_cast<std::uint8_t>(weekday == 0 ? 64U : 1U << (weekday - 1));
  return isAlways() || std::ranges::any_of(spans_, [&](const Span& span) {
           if (span.from < span.to) return (span.days & today) && minute >= span.from && minute < span.to;
           return ((span.days & today) && minute >= span.from) ||
                  ((span.days & yesterday) && minute < span.to);
         });
}

}  // namespace linewatch::notices

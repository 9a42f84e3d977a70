#include "feeds/http/response_header.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <limits>
#include <utility>
#include <vector>

#include "feeds/http/http_fetcher.h"
#include "feeds/text/ascii.h"
#include "shared/failure.h"

namespace linewatch {

namespace {

constexpr Seconds kLongestMaxAge{300};
constexpr Seconds kLongestRetryAfter{86400};

struct HeaderField {
  std::string_view name;
  std::string ResponseHeader::*text;
  /// The values of several lines are one list. Of any other field the first line counts.
  bool isList = false;
};

constexpr HeaderField kHeaderFields[] = {
    {"etag", &ResponseHeader::etag},
    {"last-modified", &ResponseHeader::lastModified},
    {"location", &ResponseHeader::location},
    {"content-length", &ResponseHeader::contentLength, true},
    {"content-encoding", &ResponseHeader::contentEncoding, true},
    {"transfer-encoding", &ResponseHeader::transferEncoding, true},
    {"cache-control", &ResponseHeader::cacheControl, true},
    {"age", &ResponseHeader::age},
    {"date", &ResponseHeader::date},
    {"retry-after", &ResponseHeader::retryAfter},
};

bool equalIgnoringCase(std::string_view text, std::string_view small) {
  return std::ranges::equal(text, small, {}, asciiSmall);
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const std::size_t start = text.find_first_not_of(kSpace);
  return start == std::string_view::npos ? std::string_view()
                                         : text.substr(start, text.find_last_not_of(kSpace) - start + 1);
}

bool hasControlCharacter(std::string_view text) {
  return std::ranges::any_of(
      text, [](char byte) { return static_cast<unsigned char>(byte) < ' ' || byte == '\x7F'; });
}

/// Takes the part before the separator, and the separator, off `rest`.
std::string_view takePart(std::string_view& rest, char separator) {
  const std::string_view part = rest.substr(0, rest.find(separator));
  rest.remove_prefix(std::min(part.size() + 1, rest.size()));
  return part;
}

/// The number that the text consists of, the largest possible one if it is larger; absent when there is
/// anything but digits.
std::optional<std::uint64_t> wholeNumber(std::string_view text) {
  if (text.empty() || !std::ranges::all_of(text, isAsciiDigit)) return std::nullopt;
  std::uint64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  return read.ec == std::errc() ? number : std::numeric_limits<std::uint64_t>::max();
}

/// From "HTTP/1.1 200 OK" or "HTTP/2 200".
std::optional<int> statusOf(std::string_view line) {
  if (!line.starts_with("HTTP/")) return std::nullopt;
  takePart(line, ' ');
  const auto status = wholeNumber(trimmed(takePart(line, ' ')));
  if (!status || *status < 100 || *status > 599) return std::nullopt;
  return static_cast<int>(*status);
}

void readFieldLine(std::string_view line, ResponseHeader& header) {
  const std::string_view name = takePart(line, ':');
  const auto* const field = std::ranges::find_if(
      kHeaderFields, [name](const HeaderField& known) { return equalIgnoringCase(name, known.name); });
  const std::string_view value = trimmed(line);
  if (field == std::end(kHeaderFields) || hasControlCharacter(value)) return;
  std::string& text = header.*field->text;
  if (text.empty())
    text = value;
  else if (field->isList)
    text.append(", ").append(value);
}

std::optional<unsigned> monthNumber(std::string_view name) {
  constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                        "jul", "aug", "sep", "oct", "nov", "dec"};
  for (unsigned i = 0; i < kMonths.size(); ++i) {
    if (equalIgnoringCase(name, kMonths[i])) return i + 1;
  }
  return std::nullopt;
}

std::vector<std::string_view> alphanumericWords(std::string_view text) {
  std::vector<std::string_view> words;
  while (!text.empty()) {
    const auto end = std::ranges::find_if_not(text, isAsciiAlphanumeric);
    const auto length = static_cast<std::size_t>(end - text.begin());
    if (length > 0) words.push_back(text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return words;
}

struct CalendarDate {
  std::string_view year;
  std::string_view month;
  std::string_view day;
};

std::optional<Date> dayOf(const CalendarDate& date) {
  const auto day = wholeNumber(date.day);
  const auto month = monthNumber(date.month);
  auto year = wholeNumber(date.year);
  if (!day || !month || !year || *day > 31 || *year > 9999) return std::nullopt;
  // Two digits are of the years 1970 to 2069.
  if (date.year.size() == 2) *year += *year < 70 ? 2000 : 1900;
  using namespace std::chrono;
  const year_month_day calendar(std::chrono::year(static_cast<int>(*year)), std::chrono::month(*month),
                                std::chrono::day(static_cast<unsigned>(*day)));
  if (!calendar.ok()) return std::nullopt;
  return Date(Seconds(sys_days(calendar).time_since_epoch()));
}

std::optional<Seconds> timeOfDay(std::string_view hour, std::string_view minute, std::string_view second) {
  const auto hours = wholeNumber(hour);
  const auto minutes = wholeNumber(minute);
  const auto seconds = wholeNumber(second);
  if (!hours || !minutes || !seconds || *hours > 23 || *minutes > 59 || *seconds > 60) return std::nullopt;
  return Seconds(static_cast<double>(*hours * 3600 + *minutes * 60 + *seconds));
}

/// The sentence and the code for a status.
struct StatusMeaning {
  FailureCode code;
  std::string_view words;
};

StatusMeaning meaningOf(int status, bool keySent) {
  switch (status) {
    case 401:
    case 403:
      return {FailureCode::keyWanted,
              keySent ? "the server does not accept the key" : "the server wants a key"};
    case 404:
    case 410:
      return {FailureCode::notFound, "the server has no such document"};
    case 429:
      return {FailureCode::unreachable, "the server was asked too often"};
    default:
      return {status >= 500 ? FailureCode::unreachable : FailureCode::refused, ""};
  }
}

}  // namespace

Outcome<ResponseHeader> parseResponseHeader(std::string_view text) {
  const std::optional<int> status = statusOf(takePart(text, '\n'));
  if (!status) return failure(FailureCode::malformed, "", "", "the answer is not HTTP");
  ResponseHeader header{.status = *status};
  while (!text.empty()) readFieldLine(takePart(text, '\n'), header);
  return header;
}

std::optional<std::uint64_t> contentLength(const ResponseHeader& header) {
  std::string_view stated = header.contentLength;
  const auto length = wholeNumber(trimmed(takePart(stated, ',')));
  while (!stated.empty()) {
    if (wholeNumber(trimmed(takePart(stated, ','))) != length) return std::nullopt;
  }
  return length;
}

std::optional<Seconds> maxAge(const ResponseHeader& header) {
  std::optional<std::uint64_t> seconds;
  std::string_view directives = header.cacheControl;
  while (!directives.empty()) {
    std::string_view value = takePart(directives, ',');
    const std::string_view name = trimmed(takePart(value, '='));
    if (equalIgnoringCase(name, "no-cache") || equalIgnoringCase(name, "no-store")) return std::nullopt;
    value = trimmed(value);
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
      value = value.substr(1, value.size() - 2);
    if (equalIgnoringCase(name, "max-age")) seconds = wholeNumber(value);
  }
  if (!seconds) return std::nullopt;
  const std::uint64_t age = std::min(wholeNumber(header.age).value_or(0), *seconds);
  return std::min(Seconds(static_cast<double>(*seconds - age)), kLongestMaxAge);
}

std::optional<Seconds> retryAfter(const ResponseHeader& header, Date now) {
  if (header.status != 429 && header.status != 503) return std::nullopt;
  if (const auto seconds = wholeNumber(header.retryAfter))
    return std::min(Seconds(static_cast<double>(*seconds)), kLongestRetryAfter);
  const std::optional<Date> until = parseHttpDate(header.retryAfter);
  if (!until) return std::nullopt;
  const Seconds wait = *until - parseHttpDate(header.date).value_or(now);
  return std::clamp(wait, Seconds(0), kLongestRetryAfter);
}

std::optional<Date> parseHttpDate(std::string_view text) {
  const auto words = alphanumericWords(text);
  std::optional<Date> day;
  std::optional<Seconds> time;
  if (words.size() == 8 && words[7] == "GMT") {  // "Sun, 06 Nov 1994 08:49:37 GMT", "Sunday, 06-Nov-94 ..."
    day = dayOf({.year = words[3], .month = words[2], .day = words[1]});
    time = timeOfDay(words[4], words[5], words[6]);
  } else if (words.size() == 7) {  // "Sun Nov  6 08:49:37 1994"
    day = dayOf({.year = words[6], .month = words[1], .day = words[2]});
    time = timeOfDay(words[3], words[4], words[5]);
  }
  return day && time ? std::optional(*day + *time) : std::nullopt;
}

bool isRedirect(const ResponseHeader& header) {
  constexpr std::array kRedirects = {301, 302, 303, 307, 308};
  return std::ranges::find(kRedirects, header.status) != kRedirects.end();
}

Error statusFailure(const ResponseHeader& header, bool keySent, Date now) {
  const StatusMeaning meaning = meaningOf(header.status, keySent);
  const std::string number = "status " + std::to_string(header.status);
  Error error = failure(meaning.code, "", "",
                        meaning.words.empty() ? "the server answers with " + number
                                              : std::string(meaning.words) + " (" + number + ")");
  error.info.emplace(kHttpStatusKey, header.status);
  if (const auto wait = retryAfter(header, now)) error.info.emplace(kRetryAfterKey, wait->count());
  return error;
}

}  // namespace linewatch

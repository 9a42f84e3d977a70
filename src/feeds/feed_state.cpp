#include "feeds/feed_state.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "shared/failure.h"

namespace linewatch {

namespace {

using Kind = FeedState::Kind;

constexpr Seconds kMinute{60};
constexpr Seconds kHour{3600};
constexpr Seconds kDay{86400};
/// A header may be ahead of our clock by this much.
constexpr Seconds kClockTolerance{300};

Error unknownLines(const std::string& feed, std::string_view why) {
  return failure(FailureCode::unknown, "feed " + feed, "", why);
}

std::string ageInWords(Seconds age) {
  const auto count = [](double number, const char* unit) {
    const auto whole = static_cast<std::uint64_t>(number);
    return std::to_string(whole) + " " + unit + (whole == 1 ? "" : "s");
  };
  return age < 2 * kDay ? count(age / kHour, "hour") : count(age / kDay, "day");
}

bool matchesNothing(const SelectorCounts& counts) {
  return counts.fitting == 0 && counts.notAboutLines == 0 &&
         counts.unknown + counts.alertsWithoutSelector > 0;
}

/// The faults of the alerts themselves, however they came.
void judgeAlerts(const FeedFacts& facts, Date now, FeedState& state) {
  const Seconds age = state.written ? now - *state.written : Seconds(0);
  if (!facts.isWhole) {
    state.kind = Kind::incomplete;
    state.error = unknownLines(facts.feed, "only changes have come so far, and no list of all alerts");
  } else if (matchesNothing(facts.counts) || 2 * facts.counts.unknownRoutes > facts.counts.namingRoutes) {
    state.kind = Kind::notMatching;
    state.error = failure(FailureCode::unknown, complaintOf(facts.feed, facts.counts), "",
                          "the alerts do not match the timetable");
  } else if (age > kDay) {
    state.kind = Kind::outdated;
    state.since = state.written;
    state.error = unknownLines(facts.feed, "its alerts are " + ageInWords(age) + " old");
  } else if (age > kHour) {
    state.kind = Kind::stale;
    state.since = state.written;
  }
}

}  // namespace

FeedState stateOf(const FeedFacts& facts, Date now) {
  FeedState state{
      .feed = facts.feed, .failures = facts.failures, .failed = facts.failed, .retryAfter = facts.retryAfter};
  if (facts.written && *facts.written <= now + kClockTolerance) state.written = facts.written;
  state.received = facts.received;
  // Alerts from the future: the clock was set back, and their age is not known.
  const bool serve = facts.received && *facts.received <= now && now - *facts.received < kAlertsGrace;
  if (!facts.received || (facts.failure && !serve)) {
    state.kind = Kind::unreachable;
    state.since = facts.received;
    state.error = facts.failure;
    return state;
  }
  judgeAlerts(facts, now, state);
  if (facts.failure && state.knowsLines()) {
    state.kind = Kind::kept;
    state.since = facts.received;
    state.error = facts.failure;
  }
  return state;
}

std::optional<Seconds> ageOf(const FeedState& state, Date now) {
  const std::optional<Date> dated = state.written ? state.written : state.received;
  return dated ? std::optional(std::max(now - *dated, Seconds(0))) : std::nullopt;
}

bool hasOldHeader(const FeedState& state, Date now) { return state.written && now - *state.written > kHour; }

std::optional<Date> nextRetry(const FeedState& state, Date now) {
  if (state.failures == 0 || !state.failed) return std::nullopt;
  // A failure in the future: the clock was set back.
  if (state.retryAfter && *state.failed <= now) return std::max(*state.retryAfter, now);
  constexpr Seconds kLongest{15.0 * 60};
  const Seconds pause = std::min(kMinute * std::exp2(std::min(state.failures - 1, 10U)), kLongest);
  return std::clamp(*state.failed + pause, now, now + kLongest);
}

std::optional<Date> graceEnd(const FeedState& state) {
  return state.kind == Kind::kept && state.since ? std::optional(*state.since + kAlertsGrace) : std::nullopt;
}

std::optional<Date> nextUpdate(std::span<const FeedState> states, Date now) {
  std::optional<Date> earliest;
  for (const FeedState& state : states) {
    for (const std::optional<Date>& date : {nextRetry(state, now), graceEnd(state)}) {
      if (date && (!earliest || *date < *earliest)) earliest = date;
    }
  }
  return earliest;
}

}  // namespace linewatch

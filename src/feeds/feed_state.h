#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "feeds/alerts/incident_table.h"
#include "shared/date.h"
#include "shared/error.h"

namespace linewatch {

/// While fetches fail, the last alerts are shown until they are this old.
inline constexpr Seconds kAlertsGrace{15.0 * 60};

/// Whether a feed's alerts can be trusted at one moment, and why not.
struct FeedState {
  enum class Kind : std::uint8_t {
    fresh,
    kept,         // the last fetch failed, and the alerts before it are shown until the grace ends
    stale,        // the feed's own header is older than an hour
    outdated,     // the feed's own header is older than a day
    notMatching,  // the alerts are about routes that the timetable does not have
    incomplete,   // only changes have come so far, and no list of all alerts
    unreachable,  // the lines or the alerts cannot be read
  };

  std::string feed;
  Kind kind = Kind::fresh;
  /// `kept` and `unreachable`: when alerts last came. `stale` and `outdated`: the time in the header. Absent
  /// for the other kinds, and when no alerts ever came.
  std::optional<Date> since;
  /// The time in the feed's header; absent when the header has none or an impossible one.
  std::optional<Date> written;
  /// When alerts last came, or were confirmed; absent when none ever came.
  std::optional<Date> received;
  /// One sentence for the user, with the name of the feed; absent for `fresh` and `stale`.
  std::optional<Error> error;
  /// How many fetches failed in a row, and when the last of them did.
  std::uint32_t failures = 0;
  std::optional<Date> failed;
  /// The server's Retry-After as a point in time; absent when it gave none.
  std::optional<Date> retryAfter;

  /// False when nothing is known of the feed's lines. They are then left out of an answer.
  bool knowsLines() const { return kind == Kind::fresh || kind == Kind::kept || kind == Kind::stale; }
  bool operator==(const FeedState&) const = default;
};

/// The facts that decide the state of a feed.
struct FeedFacts {
  std::string feed;
  /// The time in the header; absent when the feed does not say.
  std::optional<Date> written;
  /// When the alerts last came, or were confirmed; absent when there are none.
  std::optional<Date> received;
  /// True once a message has listed all alerts.
  bool isWhole = true;
  SelectorCounts counts;
  /// Why the last attempt failed; absent after a success.
  std::optional<Error> failure;
  std::uint32_t failures = 0;
  std::optional<Date> failed;
  std::optional<Date> retryAfter;
};

FeedState stateOf(const FeedFacts& facts, Date now);

/// The age of the alerts, counted from the time in their header, or without one from their receipt. Absent
/// when no alerts ever came; 0 for a header that is ahead of the clock.
std::optional<Seconds> ageOf(const FeedState& state, Date now);

/// Whether the feed itself says that its alerts are older than an hour, whatever its kind.
bool hasOldHeader(const FeedState& state, Date now);

/// When to retry a failed fetch at the latest: at the server's Retry-After; without one, a minute after the
/// first failure, and twice as long after each further one, up to 15 minutes. Not before `now`. Absent when
/// the last fetch succeeded.
std::optional<Date> nextRetry(const FeedState& state, Date now);

/// When the kept alerts become too old to be shown, so that the list must be made again. Absent for other
/// states.
std::optional<Date> graceEnd(const FeedState& state);

/// The earliest retry or end of a grace among the feeds; absent when there is none.
std::optional<Date> nextUpdate(std::span<const FeedState> states, Date now);

}  // namespace linewatch

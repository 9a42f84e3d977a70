#pragma once

#include <span>
#include <string>
#include <vector>

#include "notices/line_news.h"
#include "notices/notice.h"
#include "notices/notice_rules.h"
#include "notices/notice_state.h"
#include "notices/weekly_hours.h"
#include "shared/date.h"

namespace linewatch::notices {

/// What was told is over when the line has had no such incident for this long, as feeds drop alerts for a
/// moment.
inline constexpr Seconds kSettled{3.0 * 60};
/// The end of an incident is no news after this time.
inline constexpr Seconds kEndIsNews{12.0 * 3600};
/// An incident that returns after this time is told again.
inline constexpr Seconds kSameNews{6.0 * 3600};
/// A text is told again when its incident has had another one for this long. A change of numbers alone, e.g.
/// of a countdown, is told this long after the incident was last told.
inline constexpr Seconds kSameText{30.0 * 60};

/// What an answer leads to.
struct NoticeUpdate {
  NoticeState state;
  /// To be sent once the state is saved, so that no news is told twice.
  std::vector<Notice> notices;
  /// The tags of notices that no longer hold.
  std::vector<std::string> withdrawn;
  /// Whether there are notices that only `canTell` holds back.
  bool isHeldBack = false;
};

/// The tag of the notices of a line.
std::string tagOf(const LineKey& line);

/// The new state and the notices after an answer. `news` has a line once.
///
/// - The incidents at the first answer after a subscription count as known.
/// - Each piece of news of a line is told once, at the first answer within its hours, outside quiet hours and
///   unmuted, if it still holds then.
/// - A line that was told to have incidents and is known to have none, or none of the wanted severity, is
/// told
///   to be over.
/// - What quiet hours held back is told in one summary.
/// - If the user cannot be told now, e.g. because no notification server runs, there are no notices, and the
///   news is told later.
NoticeUpdate update(const NoticeState& state, const NoticeRules& rules, std::span<const LineNews> news,
                    const Moment& now, bool canTell = true);

}  // namespace linewatch::notices

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

/// A line runs again when it has had no incident for this long, as feeds drop alerts for a moment.
inline constexpr Seconds kSettled{3.0 * 60};
/// The end of an incident is no news after this time.
inline constexpr Seconds kEndIsNews{12.0 * 3600};
/// An incident that returns after this time is told again.
inline constexpr Seconds kSameNews{6.0 * 3600};

/// What an answer leads to.
struct NoticeUpdate {
  NoticeState state;
  /// To be sent once the state is saved, so that no news is told twice.
  std::vector<Notice> notices;
  /// The tags of notices that no longer hold.
  std::vector<std::string> withdrawn;
};

/// The tag of the notices of a line.
std::string tagOf(const LineKey& line);

/// The new state and the notices after an answer. `news` has a line once.
///
/// - The incidents at the first answer after a subscription count as known.
/// - Each piece of news of a line is told once, at the first answer within its hours, outside quiet hours and
///   unmuted, if it still holds then.
/// - A line that was told to have incidents and is known to have none is told to run again.
/// - What quiet hours held back is told in one summary.
NoticeUpdate update(const NoticeState& state, const NoticeRules& rules, std::span<const LineNews> news,
                    const Moment& now);

}  // namespace linewatch::notices

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "notices/line_news.h"
#include "notices/weekly_hours.h"
#include "shared/date.h"

namespace linewatch::notices {

/// The wish to be told of a line. A line without one is never told of.
struct Subscription {
  LineKey line;
  WeeklyHours hours;
  /// The least severity. Incidents of unknown severity are always told.
  Severity from = Severity::info;

  bool operator==(const Subscription&) const = default;
};

/// An incident whose notices are silenced. It is recognised by its id or by its content.
struct MutedIncident {
  std::uint64_t muid = 0;
  std::uint64_t content = 0;
  /// For people.
  std::string title;

  bool operator==(const MutedIncident&) const = default;
};

/// Silences a line or an incident for a while. The widget shows its rows all the same.
struct Mute {
  std::variant<LineKey, MutedIncident> subject;
  Date until;

  bool operator==(const Mute&) const = default;
};

/// Everything that the user has chosen about notices.
struct NoticeRules {
  std::vector<Subscription> subscriptions;
  std::vector<Mute> mutes;
  /// Hours without any notice; one summary ends them. Absent: none.
  std::optional<WeeklyHours> quietHours;

  bool operator==(const NoticeRules&) const = default;
};

}  // namespace linewatch::notices

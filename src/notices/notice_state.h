#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "notices/line_news.h"
#include "shared/date.h"

namespace linewatch::notices {

/// A text of an incident that the user was told.
struct ToldNews {
  std::uint64_t content = 0;
  std::uint64_t gist = 0;
  /// The id that the incident had at the last answer that has it.
  std::uint64_t muid = 0;
  std::string title;
  /// When the user was told.
  Date told;
  /// Since when the answers do not have the incident; absent while they do.
  std::optional<Date> gone;
  /// Since when the incident has another text; absent while it has this one.
  std::optional<Date> replaced;

  bool operator==(const ToldNews&) const = default;
};

/// What the user knows of a line.
struct LineState {
  /// In the order in which they were told.
  std::vector<ToldNews> told;
  /// When the line's incidents were last known, to the hour.
  Date seen;
  /// Since when the line has no incident that the user wants to be told of; absent while it has one.
  std::optional<Date> clear;
  /// When the incidents that were told ended, if the user must still be told that.
  std::optional<Date> ended;
  /// Whether quiet hours hold something back, which then belongs to the summary.
  bool isWithheld = false;

  bool operator==(const LineState&) const = default;
};

/// The lines whose incidents were known at least once since their subscription.
using NoticeState = std::map<LineKey, LineState>;

}  // namespace linewatch::notices

#pragma once

#include <memory>
#include <optional>

#include "activity/user_activity_data.h"
#include "list/configured_artwork.h"
#include "platform/transit_line.h"

namespace linewatch {

/// A line whose incident rows are being made, with the artwork and the activity data that these rows share.
/// They are made with the first row, because most lines have no row and compressing a line's record is slow.
/// The line must outlive this object.
struct ListedLine {
  const TransitLineItem& line;
  /// Null until the first row.
  std::shared_ptr<const RVConfiguredArtwork> artwork = nullptr;
  /// Absent until the first row. Null when nothing opens the line.
  std::optional<std::shared_ptr<const RVUserActivityData>> activityData = std::nullopt;
};

}  // namespace linewatch

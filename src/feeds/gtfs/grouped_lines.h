#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "feeds/gtfs/line_index.h"
#include "platform/artwork.h"

namespace linewatch {

/// The lines of one agency and mode.
struct LineGroup {
  SharedLineIndex index;
  /// The index of the agency in `index->agencies()`; absent when the feed does not say.
  std::optional<std::uint32_t> agency;
  TransitMode mode = TransitMode::other;
  /// Indexes in `index->routes()`, in natural order of their names. Not empty.
  std::vector<std::size_t> routes;
};

/// Every line, by feed, agency and mode. Feeds and agencies keep their order; lines without an agency come
/// last in their feed. Of the modes, metro and rail come first.
std::vector<LineGroup> groupedLines(std::span<const SharedLineIndex> indexes);

}  // namespace linewatch

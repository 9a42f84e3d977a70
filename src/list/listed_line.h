#pragma once

#include <memory>
#include <optional>

#include "activity/user_activity_data.h"
#include "list/configured_artwork.h"
#include "platform/transit_line.h"
#include "shared/value.h"

namespace linewatch {

class ArtworkDataSourceCache;

/// A line whose incident rows are being made, with the parts that all its rows have in common. Each part is
/// made on first use: most lines list no new incident, and compressing is slow.
///
/// The line and the cache outlive it.
class ListedLine {
 public:
  ListedLine(const TransitLineItem& line, const std::shared_ptr<ArtworkDataSourceCache>& artworkCache)
      : line_(line), artworkCache_(artworkCache) {}

  const TransitLineItem& line() const { return line_; }
  /// The line's alternate artwork, else its system's, at the size of rows.
  const std::shared_ptr<const RVConfiguredArtwork>& artwork();
  /// The compressed activity record that opens the line; none when it cannot be compressed.
  const std::optional<Bytes>& compressedRecord();
  /// The first of the openables that equals this one. The rows of a line hold the same bytes, once in memory.
  std::shared_ptr<const RVUserActivityData> shared(std::shared_ptr<const RVUserActivityData> openable);

 private:
  const TransitLineItem& line_;
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache_;
  std::shared_ptr<const RVConfiguredArtwork> artwork_;
  std::optional<std::optional<Bytes>> compressedRecord_;
  std::shared_ptr<const RVUserActivityData> openable_;
};

}  // namespace linewatch

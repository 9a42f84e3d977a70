#pragma once

#include <memory>
#include <string>

#include "list/configured_artwork.h"
#include "platform/transit_line.h"

namespace linewatch {

/// The artwork of a row that shows an image of the widget's own.
std::shared_ptr<const RVConfiguredArtwork> imageArtwork(std::string imageName, double alpha);

/// The artwork of a row that shows a line's or a system's artwork at the size of rows; the description may be
/// null.
std::shared_ptr<const RVConfiguredArtwork> lineArtwork(SharedArtwork artworkDataSource,
                                                       std::shared_ptr<ArtworkDataSourceCache> artworkCache);

/// What stands for a line alone: its alternate artwork, else its system's; null when it has neither.
const SharedArtwork& artworkStandingForLine(const TransitLineItem& line);

/// The artwork of the line's system; null when there is none.
const SharedArtwork& systemArtworkOfLine(const TransitLineItem& line);

}  // namespace linewatch

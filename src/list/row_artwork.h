#pragma once

#include <memory>
#include <string>

#include "list/configured_artwork.h"
#include "platform/transit_line.h"

namespace linewatch {

/// A row artwork that shows a named image of the widget.
std::shared_ptr<const RVConfiguredArtwork> imageArtwork(std::string imageName, double alpha);

/// A row artwork that shows the artwork of a line or a system at the row size. The description may be null.
std::shared_ptr<const RVConfiguredArtwork> lineArtwork(SharedArtwork artworkDataSource,
                                                       std::shared_ptr<ArtworkDataSourceCache> artworkCache);

/// The line's alternate artwork, else its system's artwork; null when it has neither.
const SharedArtwork& artworkForLine(const TransitLineItem& line);

/// The artwork of the line's system; null without a system or an artwork.
const SharedArtwork& systemArtworkOfLine(const TransitLineItem& line);

}  // namespace linewatch

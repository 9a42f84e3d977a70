#pragma once

#include <memory>
#include <string>

#include "list/configured_artwork.h"
#include "platform/transit_line.h"

namespace linewatch {

/// A row's artwork that shows one of the widget's images.
std::shared_ptr<const RVConfiguredArtwork> imageArtwork(std::string imageName, double alpha);

/// A row's artwork that shows a line's or a system's artwork at the row size. The description may be null.
std::shared_ptr<const RVConfiguredArtwork> lineArtwork(SharedArtwork artworkDataSource,
                                                       std::shared_ptr<ArtworkDataSourceCache> artworkCache);

/// The line's alternate artwork, else its system's artwork; null when it has neither.
const SharedArtwork& artworkStandingForLine(const TransitLineItem& line);

/// The artwork of the line's system; null without a system or an artwork.
const SharedArtwork& systemArtworkOfLine(const TransitLineItem& line);

}  // namespace linewatch

#include "list/row_artwork.h"

#include <cstdint>
#include <utility>

namespace linewatch {

namespace {

constexpr std::int64_t kRowShieldSize = 3;

}  // namespace

std::shared_ptr<const RVConfiguredArtwork> imageArtwork(std::string imageName, double alpha) {
  return std::make_shared<const RVConfiguredArtwork>(std::make_shared<const NamedImage>(std::move(imageName)),
                                                     alpha);
}

std::shared_ptr<const RVConfiguredArtwork> lineArtwork(SharedArtwork artworkDataSource,
                                                       std::shared_ptr<ArtworkDataSourceCache> artworkCache) {
  return std::make_shared<const RVConfiguredArtwork>(
      std::make_shared<const SizedTransitArtwork>(std::move(artworkDataSource), kRowShieldSize,
                                                  std::move(artworkCache)),
      kFullAlpha);
}

const SharedArtwork& artworkStandingForLine(const TransitLineItem& line) {
  return line.alternateArtwork() ? line.alternateArtwork() : systemArtworkOfLine(line);
}

const SharedArtwork& systemArtworkOfLine(const TransitLineItem& line) {
  static const SharedArtwork kNone;
  return line.system() ? line.system()->artwork : kNone;
}

}  // namespace linewatch

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

const SharedArtwork& artworkForLine(const TransitLineItem& line) {
  const SharedArtwork& own = line.alternateArtwork();
  return own ? own : systemArtworkOfLine(line);
}

const SharedArtwork& systemArtworkOfLine(const TransitLineItem& line) {
  static const SharedArtwork kNone;
  const auto& system = line.system();
  return system ? system->artwork : kNone;
}

}  // namespace linewatch

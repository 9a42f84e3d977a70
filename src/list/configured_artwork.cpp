#include "list/configured_artwork.h"

#include <utility>

#include "shared/number_hash.h"

namespace linewatch {

namespace {

bool sameArchives(const ArtworkImageSource& a, const ArtworkImageSource& b) {
  if (!a.supportsSecureArchiving() || !b.supportsSecureArchiving()) return false;
  const auto archive = a.secureArchive();
  return archive && archive == b.secureArchive();
}

bool sameSources(const std::shared_ptr<const ArtworkImageSource>& a,
                 const std::shared_ptr<const ArtworkImageSource>& b) {
  return bothAbsentOrEqual(a, b) || (a && b && sameArchives(*a, *b));
}

}  // namespace

RVConfiguredArtwork::RVConfiguredArtwork(std::shared_ptr<const ArtworkImageSource> artworkSource,
                                         double alpha)
    : artworkSource_(std::move(artworkSource)),
      alpha_(alpha),
      hash_(hashOfNumber(alpha_) ^ hashOrZero(artworkSource_)) {}

bool RVConfiguredArtwork::isEqual(const Object& other) const {
  if (this == &other) return true;
  const auto* artwork = dynamic_cast<const RVConfiguredArtwork*>(&other);
  return artwork != nullptr && isEqualToConfiguredArtwork(*artwork);
}

bool RVConfiguredArtwork::isEqualToConfiguredArtwork(const RVConfiguredArtwork& other) const {
  return alpha_ == other.alpha_ && sameSources(artworkSource_, other.artworkSource_);
}

std::string RVConfiguredArtwork::description() const {
  return "<" + classNameOf(*this) + " " + (artworkSource_ ? artworkSource_->description() : "(null)") +
         " alpha " + Value(alpha_).description() + ">";
}

}  // namespace linewatch

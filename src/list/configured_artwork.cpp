#include "list/configured_artwork.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace linewatch {

namespace {

constexpr std::uint64_t kHashFactor = 0x9E3779B1;
constexpr double kTwoTo64 = 18446744073709551616.0;

std::uint64_t unsignedOrZero(double value) { return value > 0 ? static_cast<std::uint64_t>(value) : 0; }

std::uint64_t hashOfAlpha(double alpha) {
  const double a = std::fabs(alpha);
  const double i = std::floor(a + 0.5);
  return unsignedOrZero(std::fmod(i, kTwoTo64)) * kHashFactor + unsignedOrZero((a - i) * kTwoTo64);
}

bool sameArchives(const ArtworkImageSource& a, const ArtworkImageSource& b) {
  return a.supportsSecureArchiving() && b.supportsSecureArchiving() && a.secureArchive() == b.secureArchive();
}

bool sameSources(const std::shared_ptr<const ArtworkImageSource>& a,
                 const std::shared_ptr<const ArtworkImageSource>& b) {
  return bothAbsentOrEqual(a, b) || (a && b && sameArchives(*a, *b));
}

}  // namespace

RVConfiguredArtwork::RVConfiguredArtwork(std::shared_ptr<const ArtworkImageSource> artworkSource,
                                         double alpha)
    : artworkSource_(std::move(artworkSource)), alpha_(alpha) {}

bool RVConfiguredArtwork::isEqual(const Object& other) const {
  if (this == &other) return true;
  const auto* artwork = dynamic_cast<const RVConfiguredArtwork*>(&other);
  return artwork != nullptr && isEqualToConfiguredArtwork(*artwork);
}

bool RVConfiguredArtwork::isEqualToConfiguredArtwork(const RVConfiguredArtwork& other) const {
  return alpha_ == other.alpha_ && sameSources(artworkSource_, other.artworkSource_);
}

std::size_t RVConfiguredArtwork::hash() const { return hashOfAlpha(alpha_) ^ hashOrZero(artworkSource_); }

std::string RVConfiguredArtwork::description() const {
  return "<" + classNameOf(*this) + " " + (artworkSource_ ? artworkSource_->description() : "(null)") +
         " alpha " + Value(alpha_).description() + ">";
}

}  // namespace linewatch

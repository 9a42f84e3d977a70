#pragma once

#include <cstddef>
#include <memory>

#include "shared/object.h"
#include "ui/artwork_image_source.h"

namespace linewatch {

/// Line artworks are opaque. Generic images are faint: 0.2 in single precision.
inline constexpr double kFullAlpha = 1.0;
inline constexpr double kFaintAlpha = static_cast<double>(0.2F);

/// An artwork and the opacity at which it is drawn. Immutable.
class RVConfiguredArtwork : public Object {
 public:
  /// `artworkSource` may be null; `alpha` goes from 0 to 1.
  RVConfiguredArtwork(std::shared_ptr<const ArtworkImageSource> artworkSource, double alpha);

  const std::shared_ptr<const ArtworkImageSource>& artworkSource() const { return artworkSource_; }
  double alpha() const { return alpha_; }

  bool isEqual(const Object& other) const override;
  /// Sources that are unequal by `isEqual` still count as equal when their secure archives are identical.
  bool isEqualToConfiguredArtwork(const RVConfiguredArtwork& other) const;
  std::size_t hash() const override { return hash_; }
  std::string description() const override;

 private:
  std::shared_ptr<const ArtworkImageSource> artworkSource_;
  double alpha_;
  std::size_t hash_;
};

}  // namespace linewatch

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/artwork.h"
#include "shared/object.h"
#include "shared/value.h"

namespace linewatch {

class ArtworkDataSourceCache;
namespace ui {
class Image;
}

/// The image of a row's artwork.
class ArtworkImageSource : public Object {
 public:
  /// True when the source may be compared by its `secureArchive`.
  virtual bool supportsSecureArchiving() const { return false; }
  /// The source archived with secure coding; absent when that fails.
  virtual std::optional<Bytes> secureArchive() const { return std::nullopt; }
  /// The source drawn for a display of `scale` pixels a point, at the user's present text size; null when
  /// there is nothing to draw.
  virtual std::shared_ptr<const ui::Image> image(double /*scale*/) const { return nullptr; }
};

/// A line's or system's artwork at a shield size, drawn through an artwork cache.
///
/// Two are equal when their descriptions (by value), sizes and caches are. Without a description nothing is
/// drawn.
class SizedTransitArtwork final : public ArtworkImageSource {
 public:
  SizedTransitArtwork(SharedArtwork artworkDataSource, std::int64_t shieldSize,
                      std::shared_ptr<ArtworkDataSourceCache> artworkCache);

  const SharedArtwork& artworkDataSource() const { return artworkDataSource_; }
  /// A size step; one step smaller is the value minus 1.
  std::int64_t shieldSize() const { return shieldSize_; }
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return artworkCache_; }

  /// Null without a description or a cache.
  std::shared_ptr<const ui::Image> image(double scale) const override;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override { return hash_; }
  std::string description() const override;

 private:
  SharedArtwork artworkDataSource_;
  std::int64_t shieldSize_;
  std::shared_ptr<ArtworkDataSourceCache> artworkCache_;
  std::size_t hash_;
};

/// An image of the widget's own assets, by name.
class NamedImage final : public ArtworkImageSource {
 public:
  explicit NamedImage(std::string name) : name_(std::move(name)) {}

  const std::string& name() const { return name_; }

  /// Null when the widget has no such image.
  std::shared_ptr<const ui::Image> image(double scale) const override;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  std::string description() const override;

 private:
  std::string name_;
};

}  // namespace linewatch

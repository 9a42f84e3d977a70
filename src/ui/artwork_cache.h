#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/artwork.h"

namespace linewatch {

namespace ui {
class Image;
}

/// The size and resolution of an artwork's image.
struct ArtworkSize {
  /// A size step; one step smaller is the value minus 1.
  std::int64_t step = 3;
  /// Pixels a point, for a width on the pixel grid.
  double scale = 1;
  /// How much larger than at the default text size.
  double growth = 1;

  bool operator==(const ArtworkSize&) const = default;
};

/// Makes the images of shields. Keeps no atlas: an image draws itself. Main thread.
class ShieldManager {
 public:
  virtual ~ShieldManager() = default;

  /// `widthAtStep3`: points, when the description fixes the width. Null when nothing can be shown.
  virtual std::shared_ptr<const ui::Image> image(const ShieldDataSource& shield,
                                                 std::optional<double> widthAtStep3,
                                                 const ArtworkSize& size) = 0;
  /// The image with the sign of a line that has no service. By default the image alone.
  virtual std::shared_ptr<const ui::Image> withIncidentBadge(std::shared_ptr<const ui::Image> image,
                                                             const ArtworkSize&) {
    return image;
  }
  /// Drops everything that can be made again.
  virtual void purge() {}
};

/// Makes the images of icons.
class IconManager {
 public:
  virtual ~IconManager() = default;

  virtual std::shared_ptr<const ui::Image> image(const IconDataSource& icon,
                                                 std::optional<double> widthAtStep3,
                                                 const ArtworkSize& size) = 0;
  virtual void purge() {}
};

/// Chooses which part of a description is drawn. Main thread.
class TransitArtworkManager {
 public:
  TransitArtworkManager(std::shared_ptr<ShieldManager> shieldManager,
                        std::shared_ptr<IconManager> iconManager)
      : shieldManager_(std::move(shieldManager)), iconManager_(std::move(iconManager)) {}

  /// The shield or icon that the source type names. When it is missing or unknown to the managers: the icon's
  /// fallback shield, then the other of shield and icon. A description without any of them gives an empty
  /// shield or icon. Null when nothing can be drawn. The image has a sign when the description asks for the
  /// badge.
  std::shared_ptr<const ui::Image> image(const TransitArtworkDataSource& artwork,
                                         const ArtworkSize& size) const;
  void purge();

 private:
  std::shared_ptr<const ui::Image> imageWithoutBadge(const TransitArtworkDataSource& artwork,
                                                     const ArtworkSize& size) const;
  std::shared_ptr<const ui::Image> icon(const TransitArtworkDataSource& artwork,
                                        const ArtworkSize& size) const;
  std::shared_ptr<const ui::Image> shield(const std::optional<ShieldDataSource>& shield,
                                          const TransitArtworkDataSource& artwork,
                                          const ArtworkSize& size) const;
  std::shared_ptr<const ui::Image> blank(const TransitArtworkDataSource& artwork,
                                         const ArtworkSize& size) const;

  std::shared_ptr<ShieldManager> shieldManager_;
  std::shared_ptr<IconManager> iconManager_;
};

/// Keeps the image of each artwork at each size until it is purged. Main thread.
class ArtworkDataSourceCache {
 public:
  explicit ArtworkDataSourceCache(std::shared_ptr<TransitArtworkManager> manager)
      : manager_(std::move(manager)) {}

  /// Null when nothing of the description can be drawn; the cache keeps that answer too.
  std::shared_ptr<const ui::Image> image(const TransitArtworkDataSource& artwork, const ArtworkSize& size);
  /// Drops every image, also in the managers.
  void purge();

 private:
  struct Drawn {
    ArtworkSize size;
    std::shared_ptr<const ui::Image> image;
  };
  struct Hash {
    std::size_t operator()(const TransitArtworkDataSource& artwork) const { return hashOfAllFields(artwork); }
  };

  std::shared_ptr<TransitArtworkManager> manager_;
  /// The few sizes of each artwork.
  std::unordered_map<TransitArtworkDataSource, std::vector<Drawn>, Hash> images_;
};

}  // namespace linewatch

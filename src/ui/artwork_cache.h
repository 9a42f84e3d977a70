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

/// How an artwork is wanted.
struct ArtworkSize {
  /// A size step; one step smaller is the value minus 1.
  std::int64_t step = 3;
  /// Pixels a point, for a width on the pixel grid.
  double scale = 1;

  bool operator==(const ArtworkSize&) const = default;
};

/// Draws shields. Keeps no atlas of what it drew: its pictures know how to draw themselves. Main thread.
class ShieldManager {
 public:
  virtual ~ShieldManager() = default;

  /// `widthAtStep3`: points, where the description fixes the width. Null when there is nothing to show.
  virtual std::shared_ptr<const ui::Image> image(const ShieldDataSource& shield,
                                                 std::optional<double> widthAtStep3,
                                                 const ArtworkSize& size) = 0;
  /// Forgets what can be made again.
  virtual void purge() {}
};

/// The same for icons.
class IconManager {
 public:
  virtual ~IconManager() = default;

  virtual std::shared_ptr<const ui::Image> image(const IconDataSource& icon,
                                                 std::optional<double> widthAtStep3,
                                                 const ArtworkSize& size) = 0;
  virtual void purge() {}
};

/// Chooses what of a description is drawn. Main thread.
class TransitArtworkManager {
 public:
  TransitArtworkManager(std::shared_ptr<ShieldManager> shieldManager,
                        std::shared_ptr<IconManager> iconManager)
      : shieldManager_(std::move(shieldManager)), iconManager_(std::move(iconManager)) {}

  /// What the source type names; where that is missing or unknown to the managers, the icon's fallback
  /// shield, then whatever else the description has. A description with none of these is one of an empty
  /// shield or icon. Null when nothing of it can be drawn.
  std::shared_ptr<const ui::Image> image(const TransitArtworkDataSource& artwork,
                                         const ArtworkSize& size) const;
  void purge();

 private:
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

/// Makes each artwork once for each size, until it is purged. Main thread.
class ArtworkDataSourceCache {
 public:
  explicit ArtworkDataSourceCache(std::shared_ptr<TransitArtworkManager> manager)
      : manager_(std::move(manager)) {}

  /// Null when nothing of the description can be drawn; that is remembered too.
  std::shared_ptr<const ui::Image> image(const TransitArtworkDataSource& artwork, const ArtworkSize& size);
  /// Drops every image and what the managers keep.
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
  /// What an artwork was drawn at: few sizes.
  std::unordered_map<TransitArtworkDataSource, std::vector<Drawn>, Hash> images_;
};

}  // namespace linewatch

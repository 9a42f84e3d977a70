#pragma once

#include <QWidget>
#include <cstdint>
#include <memory>
#include <vector>

#include "ui/artwork_cache.h"

namespace linewatch::desktop {

/// A row of artworks that wraps where its width ends.
class ArtworkStrip final : public QWidget {
 public:
  /// `step`: the artworks' size step. Artworks without an image are left out.
  ArtworkStrip(const std::vector<SharedArtwork>& artworks, std::int64_t step,
               std::shared_ptr<ArtworkDataSourceCache> cache);

  bool isEmpty() const { return artworks_.empty(); }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::shared_ptr<const ui::Image> imageOf(const SharedArtwork& artwork, double scale) const;
  /// The rectangle of each artwork at that width, in a left-to-right layout.
  std::vector<QRectF> places(double width) const;

  std::vector<SharedArtwork> artworks_;
  std::vector<QSizeF> sizes_;
  std::int64_t step_;
  std::shared_ptr<ArtworkDataSourceCache> cache_;
};

}  // namespace linewatch::desktop

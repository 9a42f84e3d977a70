#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "presentation/counted_artworks.h"
#include "presentation/memory_constrained_artwork_cache.h"
#include "presentation/transit_item_fixed_height_cell.h"
#include "presentation/transit_summary_cell.h"
#include "simulation/platform_test.h"
#include "ui/table_view_cell.h"

namespace linewatch {

/// Lays out cells and reads the frames. In the simulation's text a code point is half the font's size wide, a
/// capital letter 0.7 and a line 1.0 of the size high.
class Row : public PlatformTest {
 protected:
  static constexpr double kWidth = 359;

  void setTextSize(ui::TextSizeCategory category) {
    platform_->changeWorld([&](auto& world) { world.textSize = category; });
  }
  /// As a table does: the row gets the height of its constraints.
  static void layOut(ui::TableViewCell& cell, double width = kWidth) {
    const ui::Size size =
        cell.systemLayoutSizeFittingSize({width, 0}, ui::kRequiredPriority, ui::kFittingSizePriority);
    cell.setFrame({0, 0, width, size.height});
    cell.layoutIfNeeded();
  }
  static std::optional<ui::Rect> rectOf(const FixedHeightCell& cell, std::string_view name) {
    for (const NamedRect& each : cell.namedRects()) {
      if (each.name == name) return each.rect;
    }
    return std::nullopt;
  }
  static double firstBaseline(const FixedHeightCell& cell, const std::shared_ptr<ui::Label>& label) {
    return label->convertRectTo(label->bounds(), cell).y + label->firstBaselineFromTop().value();
  }

  SharedTransitItem item(std::optional<std::string> primaryText, std::optional<std::string> secondaryText,
                         bool displayArtwork = true,
                         std::shared_ptr<const ArtworkImageSource> source = nullptr) const {
    if (!source) source = sizedArtwork(57, cache_);
    return std::make_shared<const RVTransitItem>(
        std::move(primaryText), std::move(secondaryText),
        std::make_shared<const RVConfiguredArtwork>(std::move(source), 0.5), displayArtwork, nullptr);
  }

  CountedArtworks counted_;
  std::shared_ptr<ArtworkDataSourceCache> cache_ = counted_.makeCache();
};

}  // namespace linewatch

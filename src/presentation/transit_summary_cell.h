#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "list/transit_summary_item.h"
#include "presentation/fixed_height_cell.h"
#include "ui/transit_info_label_view.h"

namespace linewatch {

/// Shows a summary: one line of text, and below it one line with the shields of the affected lines, ending in
/// a count of the shields that do not fit.
class RVTransitSummaryCell : public FixedHeightCell {
 public:
  static constexpr std::string_view kReuseIdentifier = "RVTransitSummaryCell";

  static std::shared_ptr<RVTransitSummaryCell> make(ui::TableViewCellStyle style,
                                                    std::string reuseIdentifier);
  RVTransitSummaryCell(Key key, ui::TableViewCellStyle style, std::string reuseIdentifier);

  const std::shared_ptr<const RVTransitSummaryItem>& item() const { return item_; }
  /// Null shows nothing. An item equal to the one shown changes nothing.
  void setItem(std::shared_ptr<const RVTransitSummaryItem> item);

  /// Makes the images of the shields.
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const {
    return artworksLabel_->artworkCache();
  }
  void setArtworkCache(std::shared_ptr<ArtworkDataSourceCache> artworkCache);

  const std::shared_ptr<ui::TransitInfoLabelView>& artworksLabel() const { return artworksLabel_; }

  ui::Font _primaryFont() const override;
  void layoutSubviews() override;
  ui::Size systemLayoutSizeFittingSize(const ui::Size& target, ui::LayoutPriority horizontal,
                                       ui::LayoutPriority vertical) override;

 protected:
  void _createSubviews() override;
  Constraints _initialConstraints() override;
  double firstBaselineOffset() const override;
  void addNamedRects(std::vector<NamedRect>& rects) const override;

 private:
  void _updateLayout();

  std::shared_ptr<ui::TransitInfoLabelView> artworksLabel_;
  std::shared_ptr<const RVTransitSummaryItem> item_;
};

}  // namespace linewatch

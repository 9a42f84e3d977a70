#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "list/transit_item.h"
#include "presentation/fixed_height_cell.h"
#include "ui/artwork_image_view.h"

namespace linewatch {

/// Shows one item: a bold primary text, a secondary text below it, and the item's artwork in a trailing
/// column, which has the same width in all rows.
class RVTransitItemFixedHeightCell : public FixedHeightCell {
 public:
  static constexpr std::string_view kReuseIdentifier = "RVTransitItemFixedHeightCell";

  static std::shared_ptr<RVTransitItemFixedHeightCell> make(ui::TableViewCellStyle style,
                                                            std::string reuseIdentifier);
  RVTransitItemFixedHeightCell(Key key, ui::TableViewCellStyle style, std::string reuseIdentifier);

  const SharedTransitItem& transitItem() const { return transitItem_; }
  /// Null shows nothing. An item equal to the one shown changes nothing.
  void setTransitItem(SharedTransitItem transitItem);

  /// Points, including the gap between text and artwork. 0 until it is set.
  double trailingArtworkColumnWidth() const { return trailingGutterGuideWidthConstraint_->constant(); }
  void setTrailingArtworkColumnWidth(double width) {
    trailingGutterGuideWidthConstraint_->setConstant(width);
  }

  const std::shared_ptr<ui::Label>& secondaryLabel() const { return secondaryLabel_; }
  const std::shared_ptr<ui::ArtworkImageView>& artworkImageView() const { return artworkImageView_; }

  ui::Font _primaryFont() const override;
  virtual ui::Font _secondaryFont() const;

 protected:
  void _createSubviews() override;
  Constraints _initialConstraints() override;
  double firstBaselineOffset() const override;
  void addNamedRects(std::vector<NamedRect>& rects) const override;

 private:
  void appendColumnConstraints(Constraints& constraints);
  void appendTextConstraints(Constraints& constraints);
  void appendArtworkConstraints(Constraints& constraints);
  void showTexts();
  void showArtwork();

  std::shared_ptr<VisualEffectWrappingView> vibrancyViewForSecondaryLabel_;
  ui::SharedConstraint stackViewToTrailingGuideConstraint_;
  ui::SharedConstraint stackViewToContentGuideTrailingConstraint_;
  std::shared_ptr<ui::LayoutGuide> trailingGutterGuide_;
  ui::SharedConstraint trailingGutterGuideWidthConstraint_;
  std::shared_ptr<ui::Label> secondaryLabel_;
  std::shared_ptr<ui::ArtworkImageView> artworkImageView_;
  SharedTransitItem transitItem_;
};

}  // namespace linewatch

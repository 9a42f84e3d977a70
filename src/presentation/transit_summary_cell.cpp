#include "presentation/transit_summary_cell.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "list/localized_text.h"

namespace linewatch {

namespace {

/// From the text's baseline to the shields' baseline; the same at every text size.
constexpr double kSummaryBaselineSpacing = 35.0;
constexpr std::int64_t kShieldSize = 3;
constexpr std::int64_t kIconSize = 3;
constexpr double kSpaceBetweenShields = 5.0;

std::string textForIncidentsNotShown(std::uint64_t count) {
  return widgetText("Transit_Incident_Not_Displayed_Incidents", {count});
}

}  // namespace

std::shared_ptr<RVTransitSummaryCell> RVTransitSummaryCell::make(ui::TableViewCellStyle style,
                                                                 std::string reuseIdentifier) {
  return makeCell<RVTransitSummaryCell>(style, std::move(reuseIdentifier));
}

RVTransitSummaryCell::RVTransitSummaryCell(Key key, ui::TableViewCellStyle style, std::string reuseIdentifier)
    : FixedHeightCell(key, style, std::move(reuseIdentifier)),
      artworksLabel_(std::make_shared<ui::TransitInfoLabelView>()) {}

ui::Font RVTransitSummaryCell::_primaryFont() const { return ui::Font::preferred(ui::TextStyle::headline); }

// ---- Building ----

void RVTransitSummaryCell::_createSubviews() {
  createCommonSubviews();
  stackView_->setSpacing(kSummaryBaselineSpacing);
  primaryLabel_->setNumberOfLines(1);
  artworksLabel_->setShieldSize(kShieldSize);
  artworksLabel_->setIconSize(kIconSize);
  artworksLabel_->setSpaceBetweenShields(kSpaceBetweenShields);
  artworksLabel_->setTruncationText(textForIncidentsNotShown);
  artworksLabel_->setTextColor(ui::SemanticColor::systemGray);
  stackView_->addArrangedSubview(artworksLabel_);
}

FixedHeightCell::Constraints RVTransitSummaryCell::_initialConstraints() {
  Constraints constraints = commonConstraints();
  primaryLabelToContentGuideConstraint_ =
      stackView_->firstBaselineAnchor().constraintEqualTo(contentGuide_->topAnchor());
  constraints.insert(constraints.end(),
                     {primaryLabelToContentGuideConstraint_,
                      contentGuide_->bottomAnchor().constraintEqualTo(stackView_->bottomAnchor()),
                      stackView_->leadingAnchor().constraintEqualTo(contentGuide_->leadingAnchor()),
                      stackView_->trailingAnchor().constraintEqualTo(contentGuide_->trailingAnchor())});
  return constraints;
}

double RVTransitSummaryCell::firstBaselineOffset() const {
  return snappedToPixel(primaryLabel_->capHeight());
}

// ---- Showing ----

void RVTransitSummaryCell::setItem(std::shared_ptr<const RVTransitSummaryItem> item) {
  if (bothAbsentOrEqual(item, item_)) return;
  item_ = std::move(item);
  _updateLayout();
}

void RVTransitSummaryCell::_updateLayout() {
  primaryLabel_->setText(item_ ? item_->primaryText() : std::nullopt);
  artworksLabel_->setLabelItems(item_ && item_->artworks() ? *item_->artworks() : TransitArtworks{});
  artworksLabel_->setHidden(artworksLabel_->labelItems().empty());
}

void RVTransitSummaryCell::setArtworkCache(std::shared_ptr<ArtworkDataSourceCache> artworkCache) {
  artworksLabel_->setArtworkCache(std::move(artworkCache));
}

void RVTransitSummaryCell::layoutSubviews() {
  FixedHeightCell::layoutSubviews();
  artworksLabel_->setMaximumWidth(primaryLabel_->frame().width);
}

ui::Size RVTransitSummaryCell::systemLayoutSizeFittingSize(const ui::Size& target,
                                                           ui::LayoutPriority horizontal,
                                                           ui::LayoutPriority vertical) {
  layoutIfNeeded();
  return FixedHeightCell::systemLayoutSizeFittingSize(target, horizontal, vertical);
}

void RVTransitSummaryCell::addNamedRects(std::vector<NamedRect>& rects) const {
  addRect(rects, "artworksLabel", *artworksLabel_);
}

}  // namespace linewatch

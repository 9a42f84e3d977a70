#include "presentation/transit_item_fixed_height_cell.h"

#include <optional>
#include <utility>

#include "presentation/dynamic_type_wizard.h"

namespace linewatch {

namespace {

/// From the primary text's last baseline to the secondary text's first, at the default text size.
constexpr double kItemBaselineSpacing = 21.0;
constexpr double kArtworkVerticalInset = 8.0;
constexpr std::size_t kAnyNumberOfLines = 0;

}  // namespace

std::shared_ptr<RVTransitItemFixedHeightCell> RVTransitItemFixedHeightCell::make(
    ui::TableViewCellStyle style, std::string reuseIdentifier) {
  return makeCell<RVTransitItemFixedHeightCell>(style, std::move(reuseIdentifier));
}

RVTransitItemFixedHeightCell::RVTransitItemFixedHeightCell(Key key, ui::TableViewCellStyle style,
                                                           std::string reuseIdentifier)
    : FixedHeightCell(key, style, std::move(reuseIdentifier)),
      trailingGutterGuide_(std::make_shared<ui::LayoutGuide>()),
      secondaryLabel_(std::make_shared<ui::Label>()),
      artworkImageView_(std::make_shared<ui::ArtworkImageView>()) {}

ui::Font RVTransitItemFixedHeightCell::_primaryFont() const {
  return ui::Font::preferred(ui::TextStyle::headline, {.bold = true});
}

ui::Font RVTransitItemFixedHeightCell::_secondaryFont() const {
  return ui::Font::preferred(ui::TextStyle::subheadline);
}

// ---- Building ----

void RVTransitItemFixedHeightCell::_createSubviews() {
  createCommonSubviews();
  DynamicTypeWizard::autoscaleStackView(stackView_, kItemBaselineSpacing, primaryFontProvider());
  primaryLabel_->setNumberOfLines(kAnyNumberOfLines);
  secondaryLabel_->setNumberOfLines(kAnyNumberOfLines);
  vibrancyViewForSecondaryLabel_ =
      addWrappedLabel(secondaryLabel_, ui::VibrancyEffect::secondary,
                      fontProvider(&RVTransitItemFixedHeightCell::_secondaryFont));
  contentView().addLayoutGuide(trailingGutterGuide_);
  artworkImageView_->setLaidOutByConstraints(true);
  contentView().addSubview(artworkImageView_);
}

// When constraints contradict each other, the layout leaves out the last one. So the row's height comes
// before the text.
FixedHeightCell::Constraints RVTransitItemFixedHeightCell::_initialConstraints() {
  Constraints constraints = commonConstraints();
  appendColumnConstraints(constraints);
  appendTextConstraints(constraints);
  appendArtworkConstraints(constraints);
  return constraints;
}

void RVTransitItemFixedHeightCell::appendColumnConstraints(Constraints& constraints) {
  trailingGutterGuideWidthConstraint_ = trailingGutterGuide_->widthAnchor().constraintEqualToConstant(0);
  constraints.insert(
      constraints.end(),
      {trailingGutterGuide_->topAnchor().constraintEqualTo(contentGuide_->topAnchor()),
       trailingGutterGuide_->bottomAnchor().constraintEqualTo(contentGuide_->bottomAnchor()),
       trailingGutterGuide_->trailingAnchor().constraintEqualTo(contentGuide_->trailingAnchor()),
       trailingGutterGuideWidthConstraint_});
}

void RVTransitItemFixedHeightCell::appendTextConstraints(Constraints& constraints) {
  primaryLabelToContentGuideConstraint_ =
      primaryLabel_->firstBaselineAnchor().constraintEqualTo(contentGuide_->topAnchor());
  stackViewToTrailingGuideConstraint_ =
      stackView_->trailingAnchor().constraintEqualTo(trailingGutterGuide_->leadingAnchor());
  stackViewToContentGuideTrailingConstraint_ =
      stackView_->trailingAnchor().constraintEqualTo(contentGuide_->trailingAnchor());
  constraints.insert(constraints.end(),
                     {primaryLabelToContentGuideConstraint_,
                      contentGuide_->bottomAnchor().constraintEqualTo(stackView_->lastBaselineAnchor()),
                      stackView_->leadingAnchor().constraintEqualTo(contentGuide_->leadingAnchor()),
                      stackViewToTrailingGuideConstraint_});
}

void RVTransitItemFixedHeightCell::appendArtworkConstraints(Constraints& constraints) {
  const ui::View& content = contentView();
  const ui::View& artwork = *artworkImageView_;
  constraints.insert(
      constraints.end(),
      {artwork.trailingAnchor().constraintEqualTo(trailingGutterGuide_->trailingAnchor()),
       artwork.centerYAnchor().constraintEqualTo(contentGuide_->centerYAnchor()),
       artwork.topAnchor().constraintGreaterThanOrEqualTo(content.topAnchor(), kArtworkVerticalInset),
       artwork.bottomAnchor().constraintLessThanOrEqualTo(content.bottomAnchor(), -kArtworkVerticalInset)});
}

double RVTransitItemFixedHeightCell::firstBaselineOffset() const {
  return primaryLabel_->font().scaledValue(snappedToPixel(primaryLabel_->capHeight()));
}

// ---- Showing ----

void RVTransitItemFixedHeightCell::setTransitItem(SharedTransitItem transitItem) {
  if (bothAbsentOrEqual(transitItem, transitItem_)) return;
  transitItem_ = std::move(transitItem);
  showTexts();
  showArtwork();
}

void RVTransitItemFixedHeightCell::showTexts() {
  primaryLabel_->setText(transitItem_ ? transitItem_->primaryText() : std::nullopt);
  const auto secondaryText = transitItem_ ? transitItem_->secondaryText() : std::nullopt;
  secondaryLabel_->setText(secondaryText);
  secondaryLabel_->setHidden(!secondaryText.has_value());
}

void RVTransitItemFixedHeightCell::showArtwork() {
  const auto artwork = transitItem_ ? transitItem_->artwork() : nullptr;
  artworkImageView_->setAlpha(artwork ? artwork->alpha() : 0);
  artworkImageView_->setImageSource(artwork ? artwork->artworkSource() : nullptr);

  const bool display = transitItem_ && transitItem_->displayArtwork();
  // The two constraints contradict each other, so one is deactivated before the other is activated.
  if (!display) stackViewToTrailingGuideConstraint_->setActive(false);
  stackViewToContentGuideTrailingConstraint_->setActive(!display);
  if (display) stackViewToTrailingGuideConstraint_->setActive(true);
  artworkImageView_->setHidden(!display);
}

void RVTransitItemFixedHeightCell::addNamedRects(std::vector<NamedRect>& rects) const {
  addRect(rects, "secondaryLabel", *secondaryLabel_);
  addRect(rects, "trailingGutterGuide", *trailingGutterGuide_);
  addRect(rects, "artworkImageView", *artworkImageView_);
}

}  // namespace linewatch

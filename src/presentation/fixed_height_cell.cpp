#include "presentation/fixed_height_cell.h"

#include <utility>

#include "presentation/dynamic_type_wizard.h"

namespace linewatch {

namespace {

constexpr double kInitialContentHeight = 110.0;
constexpr double kSideInset = 16.0;
/// The order that runs after fonts and spacings have changed.
constexpr std::uint64_t kAfterFontsAndSpacings = 1;

}  // namespace

FixedHeightCell::FixedHeightCell(Key, ui::TableViewCellStyle style, std::string reuseIdentifier)
    : TableViewCell(style, std::move(reuseIdentifier)),
      stackView_(std::make_shared<ui::StackView>()),
      contentGuide_(std::make_shared<ui::LayoutGuide>()),
      primaryLabel_(std::make_shared<ui::Label>()) {}

void FixedHeightCell::createCommonSubviews() {
  addLayoutGuide(contentGuide_);
  stackView_->setLaidOutByConstraints(true);
  contentView().addSubview(stackView_);
  vibrancyViewForPrimaryLabel_ =
      addWrappedLabel(primaryLabel_, ui::VibrancyEffect::primary, primaryFontProvider());
}

std::shared_ptr<VisualEffectWrappingView> FixedHeightCell::addWrappedLabel(
    const std::shared_ptr<ui::Label>& label, ui::VibrancyEffect effect, FontProvider fontProvider) {
  auto wrapper = std::make_shared<VisualEffectWrappingView>(effect);
  stackView_->addArrangedSubview(wrapper);
  DynamicTypeWizard::autorefreshLabel(label, std::move(fontProvider));
  wrapper->setLabel(label);
  return wrapper;
}

FixedHeightCell::Constraints FixedHeightCell::commonConstraints() {
  const ui::View& content = contentView();
  rowHeightConstraint_ = content.heightAnchor().constraintEqualToConstant(kInitialContentHeight);
  return {rowHeightConstraint_,
          contentGuide_->centerYAnchor().constraintEqualTo(content.centerYAnchor()),
          contentGuide_->leadingAnchor().constraintEqualTo(content.leadingAnchor(), kSideInset),
          contentGuide_->trailingAnchor().constraintEqualTo(content.trailingAnchor(), -kSideInset),
          contentGuide_->topAnchor().constraintGreaterThanOrEqualTo(content.topAnchor()),
          contentGuide_->bottomAnchor().constraintLessThanOrEqualTo(content.bottomAnchor())};
}

void FixedHeightCell::keepBaselineOffsetFitting() {
  _updatePrimaryLabelToContentGuideConstaint();
  DynamicTypeWizard::makeObject(self_.lock(), &FixedHeightCell::_updatePrimaryLabelToContentGuideConstaint,
                                kAfterFontsAndSpacings);
}

void FixedHeightCell::_updatePrimaryLabelToContentGuideConstaint() {
  primaryLabelToContentGuideConstraint_->setConstant(firstBaselineOffset());
}

std::vector<NamedRect> FixedHeightCell::namedRects() const {
  std::vector<NamedRect> rects;
  addRect(rects, "stackView", *stackView_);
  addRect(rects, "contentGuide", *contentGuide_);
  addRect(rects, "primaryLabel", *primaryLabel_);
  addNamedRects(rects);
  return rects;
}

void FixedHeightCell::addRect(std::vector<NamedRect>& rects, std::string_view name,
                              const ui::View& view) const {
  if (!view.isHidden()) rects.push_back({name, view.convertRectTo(view.bounds(), *this)});
}

void FixedHeightCell::addRect(std::vector<NamedRect>& rects, std::string_view name,
                              const ui::LayoutGuide& guide) const {
  if (const ui::LayoutBox* owner = guide.owningBox()) {
    rects.push_back({name, owner->convertRectTo(guide.layoutFrame(), *this)});
  }
}

}  // namespace linewatch

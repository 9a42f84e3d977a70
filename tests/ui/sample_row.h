#pragma once

#include <memory>
#include <string>

#include "platform/platform.h"
#include "ui/image.h"
#include "ui/image_view.h"
#include "ui/label.h"
#include "ui/stack_view.h"
#include "ui/table_view_cell.h"
#include "ui/visual_effect_view.h"

namespace linewatch::ui {

/// Shows a label through an effect. Its baselines are the label's.
class EffectLabel final : public VisualEffectView {
 public:
  EffectLabel(const std::shared_ptr<Label>& label, VibrancyEffect effect)
      : VisualEffectView(effect), label_(label) {
    label->setLaidOutByConstraints(true);
    label->setNumberOfLines(0);
    contentView().addSubview(label);
    LayoutConstraint::activate({label->leadingAnchor().constraintEqualTo(leadingAnchor()),
                                label->trailingAnchor().constraintEqualTo(trailingAnchor()),
                                label->topAnchor().constraintEqualTo(topAnchor()),
                                label->bottomAnchor().constraintEqualTo(bottomAnchor())});
  }

  View& viewForFirstBaselineLayout() override { return *label_; }
  View& viewForLastBaselineLayout() override { return *label_; }

 private:
  std::shared_ptr<Label> label_;
};

/// A list row: a block of two texts, centred in the row, and an image in a trailing column.
class SampleRow final : public TableViewCell {
 public:
  explicit SampleRow(TableViewCellStyle style = TableViewCellStyle::plain,
                     const std::string& identifier = "row")
      : TableViewCell(style, identifier) {
    primary->setFont(Font(TextStyle::headline, {true, false}));
    secondary->setFont(Font(TextStyle::subheadline));
    stack->setLaidOutByConstraints(true);
    stack->setSpacing(21);
    stack->addArrangedSubview(primaryEffect);
    stack->addArrangedSubview(secondaryEffect);
    image->setLaidOutByConstraints(true);
    image->setImage(platform().imageSource().imageNamed("shield"));
    addLayoutGuide(guide);
    contentView().addLayoutGuide(gutter);
    contentView().addSubview(stack);
    contentView().addSubview(image);
    constrain();
    setFrame({0, 0, 359, 110});
  }

  void setShowsImage(bool shows) {
    image->setHidden(!shows);
    textToGutter->setActive(shows);
    textToGuide->setActive(!shows);
  }

  /// Lays the row out as a table does.
  void layOutAtWidth(double width) {
    const Size fitting = systemLayoutSizeFittingSize({width, 0}, kRequiredPriority, kFittingSizePriority);
    setFrame({0, 0, width, fitting.height});
    layoutIfNeeded();
  }

  const std::shared_ptr<Label> primary = std::make_shared<Label>();
  const std::shared_ptr<Label> secondary = std::make_shared<Label>();
  const std::shared_ptr<EffectLabel> primaryEffect =
      std::make_shared<EffectLabel>(primary, VibrancyEffect::primary);
  const std::shared_ptr<EffectLabel> secondaryEffect =
      std::make_shared<EffectLabel>(secondary, VibrancyEffect::secondary);
  const std::shared_ptr<StackView> stack = std::make_shared<StackView>();
  const std::shared_ptr<ImageView> image = std::make_shared<ImageView>();
  const std::shared_ptr<LayoutGuide> guide = std::make_shared<LayoutGuide>();
  const std::shared_ptr<LayoutGuide> gutter = std::make_shared<LayoutGuide>();
  SharedConstraint height, gutterWidth, firstBaseline, textToGutter, textToGuide;

 private:
  void constrain() {
    View& content = contentView();
    height = content.heightAnchor().constraintEqualToConstant(110);
    gutterWidth = gutter->widthAnchor().constraintEqualToConstant(73);
    firstBaseline = primary->firstBaselineAnchor().constraintEqualTo(guide->topAnchor(), 12);
    textToGutter = stack->trailingAnchor().constraintEqualTo(gutter->leadingAnchor());
    textToGuide = stack->trailingAnchor().constraintEqualTo(guide->trailingAnchor());
    LayoutConstraint::activate(
        {height, guide->centerYAnchor().constraintEqualTo(content.centerYAnchor()),
         guide->leadingAnchor().constraintEqualTo(content.leadingAnchor(), 16),
         guide->trailingAnchor().constraintEqualTo(content.trailingAnchor(), -16),
         guide->topAnchor().constraintGreaterThanOrEqualTo(content.topAnchor()),
         guide->bottomAnchor().constraintLessThanOrEqualTo(content.bottomAnchor()),
         gutter->topAnchor().constraintEqualTo(guide->topAnchor()),
         gutter->bottomAnchor().constraintEqualTo(guide->bottomAnchor()),
         gutter->trailingAnchor().constraintEqualTo(guide->trailingAnchor()), gutterWidth, firstBaseline,
         guide->bottomAnchor().constraintEqualTo(stack->lastBaselineAnchor()),
         stack->leadingAnchor().constraintEqualTo(guide->leadingAnchor()), textToGutter,
         image->trailingAnchor().constraintEqualTo(gutter->trailingAnchor()),
         image->centerYAnchor().constraintEqualTo(guide->centerYAnchor()),
         image->topAnchor().constraintGreaterThanOrEqualTo(content.topAnchor(), 8),
         image->bottomAnchor().constraintLessThanOrEqualTo(content.bottomAnchor(), -8)});
  }
};

}  // namespace linewatch::ui

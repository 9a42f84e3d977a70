#include "presentation/visual_effect_wrapping_view.h"

#include <utility>

namespace linewatch {

void VisualEffectWrappingView::setLabel(std::shared_ptr<ui::Label> label) {
  if (label_ && label_->superview() == &contentView()) label_->removeFromSuperview();
  label_ = std::move(label);
  if (!label_) return;
  label_->setLaidOutByConstraints(true);
  contentView().addSubview(label_);
  ui::LayoutConstraint::activate({label_->leadingAnchor().constraintEqualTo(leadingAnchor()),
                                  label_->trailingAnchor().constraintEqualTo(trailingAnchor()),
                                  label_->topAnchor().constraintEqualTo(topAnchor()),
                                  label_->bottomAnchor().constraintEqualTo(bottomAnchor())});
}

ui::View& VisualEffectWrappingView::viewForFirstBaselineLayout() {
  return label_ ? label_->viewForFirstBaselineLayout() : *this;
}

ui::View& VisualEffectWrappingView::viewForLastBaselineLayout() {
  return label_ ? label_->viewForLastBaselineLayout() : *this;
}

}  // namespace linewatch

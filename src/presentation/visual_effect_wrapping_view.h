#pragma once

#include <memory>

#include "ui/label.h"
#include "ui/visual_effect_view.h"

namespace linewatch {

/// Shows a label through an effect. Its baselines are the label's.
class VisualEffectWrappingView final : public ui::VisualEffectView {
 public:
  using VisualEffectView::VisualEffectView;

  const std::shared_ptr<ui::Label>& label() const { return label_; }
  /// The label fills this view. Null removes it.
  void setLabel(std::shared_ptr<ui::Label> label);

  View& viewForFirstBaselineLayout() override;
  View& viewForLastBaselineLayout() override;

 private:
  std::shared_ptr<ui::Label> label_;
};

}  // namespace linewatch

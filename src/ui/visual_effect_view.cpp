#include "ui/visual_effect_view.h"

namespace linewatch::ui {

Color colorOf(VibrancyEffect effect) {
  switch (effect) {
    case VibrancyEffect::primary:
      return SemanticColor::label;
    case VibrancyEffect::secondary:
      return SemanticColor::secondaryLabel;
    case VibrancyEffect::tertiary:
      break;
  }
  return SemanticColor::tertiaryLabel;
}

VisualEffectView::VisualEffectView(VibrancyEffect effect)
    : effect_(effect), contentView_(std::make_shared<View>()) {
  contentView_->setResizesWithSuperview(true, true);
  addSubview(contentView_);
}

Color VisualEffectView::contentColor(const Color& color) const {
  return color == Color(SemanticColor::label) ? colorOf(effect_) : color;
}

}  // namespace linewatch::ui

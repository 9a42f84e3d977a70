#pragma once

#include <cstdint>
#include <memory>

#include "ui/view.h"

namespace linewatch::ui {

/// How strongly content stands out from what is behind the panel, strongest first.
enum class VibrancyEffect : std::uint8_t { primary, secondary, tertiary };

/// The colour that content in `SemanticColor::label` has under the effect.
Color colorOf(VibrancyEffect effect);

/// Shows what its content view holds through an effect.
class VisualEffectView : public View {
 public:
  explicit VisualEffectView(VibrancyEffect effect);

  VibrancyEffect effect() const { return effect_; }
  /// As large as the view; holds what the effect applies to.
  View& contentView() { return *contentView_; }

  /// The colour that content of a colour is drawn in: another one only where it has no colour of its own.
  Color contentColor(const Color& color) const;

 private:
  VibrancyEffect effect_;
  std::shared_ptr<View> contentView_;
};

}  // namespace linewatch::ui

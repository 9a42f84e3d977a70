#pragma once

#include <cstdint>
#include <memory>

#include "ui/view.h"

namespace linewatch::ui {

/// How strongly content stands out from the background, strongest first.
enum class VibrancyEffect : std::uint8_t { primary, secondary, tertiary };

/// The colour of `SemanticColor::label` under the effect.
Color colorOf(VibrancyEffect effect);

/// Shows its content view through an effect.
class VisualEffectView : public View {
 public:
  explicit VisualEffectView(VibrancyEffect effect);

  VibrancyEffect effect() const { return effect_; }
  /// Fills the view. The effect applies to its subviews.
  View& contentView() { return *contentView_; }

  /// The effect's colour for `SemanticColor::label`; any other colour is unchanged.
  Color contentColor(const Color& color) const;

 private:
  VibrancyEffect effect_;
  std::shared_ptr<View> contentView_;
};

}  // namespace linewatch::ui

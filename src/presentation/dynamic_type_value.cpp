#include "presentation/dynamic_type_value.h"

namespace linewatch {

double DynamicTypeValue::scaledValue() const {
  const std::optional<ui::Font> font = fontProvider_ ? fontProvider_() : std::nullopt;
  return font ? font->scaledValue(unscaledValue_) : unscaledValue_;
}

}  // namespace linewatch

#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "ui/font.h"

namespace linewatch {

/// Returns the present font, or none. Called again whenever the font is needed.
using FontProvider = std::function<std::optional<ui::Font>()>;

/// A design length and the font that it scales with.
class DynamicTypeValue {
 public:
  /// `unscaledValue` is in points at the default text size. Without a provider the length does not scale.
  DynamicTypeValue(double unscaledValue, FontProvider fontProvider)
      : fontProvider_(std::move(fontProvider)), unscaledValue_(unscaledValue) {}

  const FontProvider& fontProvider() const { return fontProvider_; }
  void setFontProvider(FontProvider fontProvider) { fontProvider_ = std::move(fontProvider); }
  double unscaledValue() const { return unscaledValue_; }
  void setUnscaledValue(double unscaledValue) { unscaledValue_ = unscaledValue; }

  /// The length at the current text size.
  double scaledValue() const;

 private:
  FontProvider fontProvider_;
  double unscaledValue_;
};

}  // namespace linewatch

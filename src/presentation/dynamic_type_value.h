#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "ui/font.h"

namespace linewatch {

/// The font that something is shown in, asked for anew whenever it is needed. It may give none.
using FontProvider = std::function<std::optional<ui::Font>()>;

/// A length of the design and the font that it scales with.
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

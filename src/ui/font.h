#pragma once

#include "ui/text_style.h"

namespace linewatch::ui {

struct FontTraits {
  bool bold = false;
  bool italic = false;

  bool operator==(const FontTraits&) const = default;
};

/// The system's typeface for a text style at a text size category. The text engine measures it.
class Font {
 public:
  explicit Font(TextStyle style, FontTraits traits = {}, TextSizeCategory category = kDefaultTextSizeCategory)
      : style_(style), traits_(traits), category_(category) {}

  /// At the user's present text size.
  static Font preferred(TextStyle style, FontTraits traits = {});

  TextStyle style() const { return style_; }
  FontTraits traits() const { return traits_; }
  TextSizeCategory category() const { return category_; }
  double pointSize() const { return ui::pointSize(style_, category_); }

  /// A length designed for the default category, scaled in proportion to the point size.
  double scaledValue(double designValue) const { return designValue * scaleFactor(style_, category_); }

  bool operator==(const Font&) const = default;

 private:
  TextStyle style_;
  FontTraits traits_;
  TextSizeCategory category_;
};

}  // namespace linewatch::ui

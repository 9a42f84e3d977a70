#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "ui/attributed_text.h"
#include "ui/text_engine.h"
#include "ui/view.h"

namespace linewatch::ui {

/// Shows text. When the text does not fit into the label, the last line that fits ends in an ellipsis.
class Label : public View {
 public:
  Label();

  /// Empty when there is no text.
  const std::string& text() const { return text_.text(); }
  /// Keeps the attributes of the first character. An absent text empties the label.
  void setText(const std::optional<std::string>& text);
  const AttributedText& attributedText() const { return text_; }
  void setAttributedText(AttributedText text);

  /// The font of runs without one.
  const Font& font() const { return font_; }
  void setFont(const Font& font);
  const Color& textColor() const { return textColor_; }
  void setTextColor(const Color& color);
  /// 0 for any number; 1 by default.
  void setNumberOfLines(std::size_t lines);
  LineBreakMode lineBreakMode() const { return lineBreakMode_; }
  void setLineBreakMode(LineBreakMode mode);
  void setTextAlignment(TextAlignment alignment);

  /// The font's cap height in points.
  double capHeight() const;
  /// The lines drawn at the label's present size.
  std::shared_ptr<const TextLayout> displayedLayout();

  std::optional<double> intrinsicWidth() override;
  std::optional<double> intrinsicHeight(double width) override;
  double contentHeightWithin(const Size& size) override;
  double firstLineHeight(double width) override;
  /// The text's baselines at the width last measured. The baselines of an empty label are its edges.
  std::optional<double> firstBaselineFromTop() override;
  double lastBaselineFromBottom() override;

  void draw(Canvas& canvas) override;

 private:
  struct Laid {
    TextLayoutRequest request;
    std::shared_ptr<const TextLayout> layout;
  };

  TextLayoutRequest requestFor(double width) const;
  const std::shared_ptr<const TextLayout>& layOut(std::optional<Laid>& laid,
                                                  const TextLayoutRequest& request);
  std::shared_ptr<const TextLayout> layoutWithin(const Size& size);
  const ShapedText& shaped();
  void contentDidChange();
  Color effectiveTextColor() const;

  AttributedText text_;
  Font font_;
  Color textColor_ = SemanticColor::label;
  std::size_t numberOfLines_ = 1;
  LineBreakMode lineBreakMode_ = LineBreakMode::wordWrapping;
  TextAlignment alignment_ = TextAlignment::natural;
  std::shared_ptr<const ShapedText> shaped_;
  std::optional<Laid> measured_;
  std::optional<Laid> displayed_;
};

}  // namespace linewatch::ui

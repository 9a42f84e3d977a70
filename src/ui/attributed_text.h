#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/color.h"
#include "ui/font.h"

namespace linewatch::ui {

struct ParagraphStyle {
  /// Points added between lines.
  double lineSpacing = 0;

  bool operator==(const ParagraphStyle&) const = default;
};

/// The attributes of a run of text. An absent attribute is the label's own.
struct TextAttributes {
  std::optional<Font> font;
  std::optional<Color> color;
  std::optional<ParagraphStyle> paragraphStyle;

  bool operator==(const TextAttributes&) const = default;
};

/// A text that consists of runs with their own attributes. A value.
class AttributedText {
 public:
  /// From byte `begin` of the text to the next run.
  struct Run {
    std::size_t begin = 0;
    TextAttributes attributes;

    bool operator==(const Run&) const = default;
  };

  AttributedText() = default;
  explicit AttributedText(std::string text, const TextAttributes& attributes = {});

  const std::string& text() const { return text_; }
  bool isEmpty() const { return text_.empty(); }
  /// In the order of the text. No run is empty; an empty text has none.
  const std::vector<Run>& runs() const { return runs_; }
  std::size_t endOf(std::size_t run) const;

  void append(std::string_view text, const TextAttributes& attributes = {});
  /// The style at the first character; absent when it has none or the text is empty.
  std::optional<ParagraphStyle> paragraphStyle() const;
  /// Gives the style to the whole text. Has no effect on an empty text.
  void setParagraphStyle(const ParagraphStyle& style);

  bool operator==(const AttributedText&) const = default;

 private:
  std::string text_;
  std::vector<Run> runs_;
};

}  // namespace linewatch::ui

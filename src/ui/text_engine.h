#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

#include "ui/attributed_text.h"
#include "ui/layout/geometry.h"

namespace linewatch::ui {

/// Lengths of a font in points. The ascent is above the baseline, the descent below; both are positive.
struct FontMetrics {
  double ascent = 0;
  double descent = 0;
  /// Between the descent of one line and the ascent of the next.
  double leading = 0;
  /// From the baseline to the top of a capital letter.
  double capHeight = 0;

  bool operator==(const FontMetrics&) const = default;
};

enum class TextAlignment { natural, left, center, right };

/// How text that is wider than its label is shown.
enum class LineBreakMode {
  /// Lines break between words, or within a word that is too long. The last line allowed ends in an ellipsis
  /// when more text follows.
  wordWrapping,
  /// One line, which ends in an ellipsis.
  truncatingTail,
  /// One line, cut off at its edge.
  clipping
};

struct TextLayoutRequest {
  /// Points; lines are aligned in this width when it is finite.
  double width = std::numeric_limits<double>::infinity();
  /// 0 for no limit.
  std::size_t maximumNumberOfLines = 0;
  /// Lines that end below this height are left out, except the first.
  double maximumHeight = std::numeric_limits<double>::infinity();
  LineBreakMode lineBreakMode = LineBreakMode::wordWrapping;
  TextAlignment alignment = TextAlignment::natural;
  LayoutDirection direction = LayoutDirection::leftToRight;
  /// Pixels per point: baselines and the height are on the pixel grid.
  double scale = 1;

  bool operator==(const TextLayoutRequest&) const = default;
};

/// One line of a layout. `x` and `baseline` are relative to the layout's top left corner.
struct TextLine {
  /// In bytes of the text. White space where a line is wrapped belongs to no line.
  std::size_t begin = 0;
  std::size_t end = 0;
  /// An ellipsis follows the text.
  bool truncated = false;
  double width = 0;
  double ascent = 0;
  double descent = 0;
  double leading = 0;
  double x = 0;
  double baseline = 0;
};

/// Text broken into lines, ready to be drawn. Immutable.
struct TextLayout {
  std::vector<TextLine> lines;
  /// The width of the widest line; the height from the top of the first line to the bottom of the last.
  Size size;
  /// For the text engine that made the layout.
  std::shared_ptr<const void> glyphs;

  double firstBaseline() const { return lines.empty() ? 0 : lines.front().baseline; }
  double lastBaseline() const { return lines.empty() ? 0 : lines.back().baseline; }
};

/// A shaped text, to be broken into lines of any width. Main thread.
class ShapedText {
 public:
  virtual ~ShapedText() = default;

  /// The width of the longest paragraph in one line.
  virtual double naturalWidth() const = 0;
  /// No lines when the text is empty or the width is not positive. Takes time in proportion to the text, or
  /// to the lines wanted when their number is limited.
  virtual std::shared_ptr<const TextLayout> layOut(const TextLayoutRequest& request) const = 0;
};

/// Shapes and measures text. Takes any bytes: invalid UTF-8 shows as replacement characters. Main thread.
class TextEngine {
 public:
  virtual ~TextEngine() = default;

  virtual FontMetrics metrics(const Font& font) = 0;
  /// `font` is the font of runs without one. Never null.
  virtual std::shared_ptr<const ShapedText> shape(const AttributedText& text, const Font& font) = 0;
};

/// Places lines that have their widths and metrics below each other, `lineSpacing` apart, with baselines on
/// the pixel grid and aligned as requested. Returns the layout's size.
Size placeLines(std::vector<TextLine>& lines, double lineSpacing, const TextLayoutRequest& request);
/// The number of lines that the request's height and line limit allow, at least 1; the largest number without
/// limits.
std::size_t lineLimit(const FontMetrics& metrics, double lineSpacing, const TextLayoutRequest& request);

}  // namespace linewatch::ui

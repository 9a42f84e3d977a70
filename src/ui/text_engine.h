#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

#include "ui/attributed_text.h"
#include "ui/layout/geometry.h"

namespace linewatch::ui {

/// Lengths of a font in points. The ascent lies above the baseline, the descent below; both are positive.
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

/// What becomes of text that is wider than its place.
enum class LineBreakMode {
  /// Lines end between words, else between characters; the last line that is allowed ends in an ellipsis when
  /// text is left over.
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
  /// No line may end below this, save the first.
  double maximumHeight = std::numeric_limits<double>::infinity();
  LineBreakMode lineBreakMode = LineBreakMode::wordWrapping;
  TextAlignment alignment = TextAlignment::natural;
  LayoutDirection direction = LayoutDirection::leftToRight;
  /// Pixels a point: baselines and the height are on the pixel grid.
  double scale = 1;

  bool operator==(const TextLayoutRequest&) const = default;
};

/// One line of a layout; places are measured from the layout's top left corner.
struct TextLine {
  /// Bytes of the text; white space at a soft line end belongs to no line.
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

/// Text in lines, ready to be drawn. Immutable.
struct TextLayout {
  std::vector<TextLine> lines;
  /// The widest line, and from the top of the first line to the bottom of the last.
  Size size;
  /// Whatever the engine that made it needs to draw it.
  std::shared_ptr<const void> glyphs;

  double firstBaseline() const { return lines.empty() ? 0 : lines.front().baseline; }
  double lastBaseline() const { return lines.empty() ? 0 : lines.back().baseline; }
};

/// A text made ready for lines of any width. Main thread.
class ShapedText {
 public:
  virtual ~ShapedText() = default;

  /// The width of the longest paragraph in one line.
  virtual double naturalWidth() const = 0;
  /// No lines when the text is empty or the width is not positive. The cost is in proportion to the text, and
  /// to no more than the lines wanted where their number is limited.
  virtual std::shared_ptr<const TextLayout> layOut(const TextLayoutRequest& request) const = 0;
};

/// What the toolkit cannot know of text. Takes any bytes: what is not UTF-8 shows as replacement characters.
/// Main thread.
class TextEngine {
 public:
  virtual ~TextEngine() = default;

  virtual FontMetrics metrics(const Font& font) = 0;
  /// `font` is that of runs without one. Never null.
  virtual std::shared_ptr<const ShapedText> shape(const AttributedText& text, const Font& font) = 0;
};

/// Puts lines that have their widths and metrics in their places: each below the one before, `lineSpacing`
/// apart, with all baselines on the pixel grid, aligned as the request says. Gives the layout's size.
Size placeLines(std::vector<TextLine>& lines, double lineSpacing, const TextLayoutRequest& request);
/// How many lines of the metrics fit in the request's height and number of lines; at least 1, and the largest
/// number when nothing limits them.
std::size_t lineLimit(const FontMetrics& metrics, double lineSpacing, const TextLayoutRequest& request);

}  // namespace linewatch::ui

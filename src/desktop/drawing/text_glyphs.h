#pragma once

#include <QGlyphRun>
#include <QTextLayout>
#include <memory>
#include <optional>
#include <vector>

#include "ui/color.h"

namespace linewatch::desktop {

/// Glyphs of one font and one colour; their places are measured from where the line's baseline begins.
struct ColoredGlyphs {
  QGlyphRun glyphs;
  /// Absent: the colour that the whole text is drawn in.
  std::optional<ui::Color> color;
};

/// What this platform's text engine keeps in a layout to draw it. Immutable to the outside.
class TextGlyphs {
 public:
  /// Units of a line's text that have a colour of their own.
  struct ColoredRange {
    int begin = 0;
    int end = 0;
    std::optional<ui::Color> color;
  };

  struct Line {
    /// Keeps the glyphs of the line with this number.
    std::shared_ptr<const QTextLayout> layout;
    int line = 0;
    /// Covers the line; in units of the layout's text.
    std::vector<ColoredRange> ranges;
  };

  explicit TextGlyphs(std::vector<Line> lines) : lines_(std::move(lines)) {}

  /// One for each of the layout's lines. Taken from Qt when it is first asked for: most layouts are only
  /// measured.
  const std::vector<std::vector<ColoredGlyphs>>& lines() const;

 private:
  std::vector<Line> lines_;
  mutable std::vector<std::vector<ColoredGlyphs>> glyphs_;
};

}  // namespace linewatch::desktop

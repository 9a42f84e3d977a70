#pragma once

#include <QGlyphRun>
#include <QTextLayout>
#include <memory>
#include <optional>
#include <vector>

#include "ui/color.h"

namespace linewatch::desktop {

/// Glyphs of one font and one colour. Their positions are relative to the beginning of the line's baseline.
struct ColoredGlyphs {
  QGlyphRun glyphs;
  /// Absent: the colour in which the whole text is drawn.
  std::optional<ui::Color> color;
};

/// The glyphs of a text layout, for drawing. Observably immutable.
class TextGlyphs {
 public:
  /// A range of a line's UTF-16 units in one colour.
  struct ColoredRange {
    int begin = 0;
    int end = 0;
    std::optional<ui::Color> color;
  };

  struct Line {
    /// The layout that owns the glyphs, and the number of the line in it.
    std::shared_ptr<const QTextLayout> layout;
    int line = 0;
    /// Ranges that together cover the line, in units of the layout's text.
    std::vector<ColoredRange> ranges;
  };

  explicit TextGlyphs(std::vector<Line> lines) : lines_(std::move(lines)) {}

  /// The glyphs of each line. They are taken from Qt on the first call, since most layouts are only measured.
  const std::vector<std::vector<ColoredGlyphs>>& lines() const;

 private:
  std::vector<Line> lines_;
  mutable std::vector<std::vector<ColoredGlyphs>> glyphs_;
};

}  // namespace linewatch::desktop

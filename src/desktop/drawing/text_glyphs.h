#pragma once

#include <QGlyphRun>
#include <QTextLayout>
#include <memory>
#include <optional>
#include <vector>

#include "ui/color.h"

namespace linewatch::desktop {

/// Glyphs of one font and one colour. Positions are relative to the start of the line's baseline.
struct ColoredGlyphs {
  QGlyphRun glyphs;
  /// Absent for the colour of the whole text.
  std::optional<ui::Color> color;
};

/// The glyphs of a text layout, for drawing. Immutable for its users.
class TextGlyphs {
 public:
  /// A range of a line's UTF-16 units in one colour.
  struct ColoredRange {
    int begin = 0;
    int end = 0;
    std::optional<ui::Color> color;
  };

  struct Line {
    /// The layout that has the glyphs, and the line's number in it.
    std::shared_ptr<const QTextLayout> layout;
    int line = 0;
    /// Ranges that together cover the line, in units of the layout's text.
    std::vector<ColoredRange> ranges;
  };

  explicit TextGlyphs(std::vector<Line> lines) : lines_(std::move(lines)) {}

  /// The glyphs of each line. They are computed by the first call, because most layouts are only measured.
  const std::vector<std::vector<ColoredGlyphs>>& lines() const;

 private:
  std::vector<Line> lines_;
  mutable std::vector<std::vector<ColoredGlyphs>> glyphs_;
};

}  // namespace linewatch::desktop

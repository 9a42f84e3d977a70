#include "desktop/drawing/text_glyphs.h"

#include <QList>
#include <QPointF>

namespace linewatch::desktop {

namespace {

void appendGlyphs(std::vector<ColoredGlyphs>& to, const QTextLine& line,
                  const TextGlyphs::ColoredRange& range) {
  const QPointF beginOfBaseline(line.naturalTextRect().x(), line.y() + line.ascent());
  for (QGlyphRun& run : line.glyphRuns(range.begin, range.end - range.begin)) {
    QList<QPointF> positions = run.positions();
    for (QPointF& position : positions) position -= beginOfBaseline;
    run.setPositions(positions);
    to.push_back({run, range.color});
  }
}

}  // namespace

const std::vector<std::vector<ColoredGlyphs>>& TextGlyphs::lines() const {
  if (glyphs_.size() == lines_.size()) return glyphs_;
  for (const Line& line : lines_) {
    std::vector<ColoredGlyphs>& glyphs = glyphs_.emplace_back();
    for (const ColoredRange& range : line.ranges) appendGlyphs(glyphs, line.layout->lineAt(line.line), range);
  }
  return glyphs_;
}

}  // namespace linewatch::desktop

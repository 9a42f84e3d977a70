#include "simulation/roles/simulated_text_engine.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace linewatch::simulation {

namespace {

constexpr double kAdvance = 0.5;
constexpr double kAscent = 0.8;
constexpr double kDescent = 0.2;
constexpr double kCapHeight = 0.7;
// The sum of the advances of an exactly full line may exceed the width by a rounding error.
constexpr double kTolerance = 1e-6;

struct Glyph {
  /// Bytes of the text.
  std::size_t begin = 0;
  char32_t codePoint = 0;
  double pointSize = 0;
  /// The sum of the advances before the glyph.
  double x = 0;
};

// Reads the code point at `at` and moves `at` behind it. A byte that cannot start one counts as a code point.
char32_t nextCodePoint(const std::string& text, std::size_t& at) {
  const auto first = static_cast<unsigned char>(text[at++]);
  const std::size_t length = first < 0xC2 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 1;
  if (length == 1) return first;
  char32_t codePoint = first & (0xFFU >> (length + 1));
  for (std::size_t i = 0; i + 1 < length; ++i) {
    const auto byte = at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
    if ((byte & 0xC0U) != 0x80U) return 0xFFFD;
    codePoint = (codePoint << 6U) | (byte & 0x3FU);
  }
  at += length - 1;
  return codePoint;
}

bool isCombining(char32_t codePoint) {
  return (codePoint >= 0x300 && codePoint <= 0x36F) || (codePoint >= 0x1AB0 && codePoint <= 0x1AFF) ||
         (codePoint >= 0x20D0 && codePoint <= 0x20FF) || codePoint == 0x200D ||
         (codePoint >= 0xFE00 && codePoint <= 0xFE0F) || (codePoint >= 0xFE20 && codePoint <= 0xFE2F);
}

bool isSpace(char32_t codePoint) { return codePoint == ' ' || codePoint == '\t' || codePoint == 0x3000; }

bool isLineEnd(char32_t codePoint) {
  return codePoint == '\n' || codePoint == '\r' || codePoint == 0x2028 || codePoint == 0x2029;
}

/// The glyphs from `begin` up to `end`, and where the next line begins.
struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t next = 0;
};

class SimulatedShapedText final : public ui::ShapedText {
 public:
  SimulatedShapedText(const ui::AttributedText& text, const ui::Font& font);

  double naturalWidth() const override { return naturalWidth_; }
  std::shared_ptr<const ui::TextLayout> layOut(const ui::TextLayoutRequest& request) const override;

 private:
  std::size_t glyphCount() const { return glyphs_.size() - 1; }
  double width(std::size_t begin, std::size_t end) const { return glyphs_[end].x - glyphs_[begin].x; }
  std::size_t paragraphEnd(std::size_t begin) const;
  std::size_t fitting(std::size_t begin, std::size_t end, double limit) const;
  Range lineFrom(std::size_t begin, double limit) const;
  Range wholeParagraph(std::size_t begin) const;
  ui::TextLine lineOf(const Range& range) const;
  ui::TextLine truncatedLine(const Range& range, const ui::TextLayoutRequest& request) const;

  /// The last one is not a glyph but marks the end of the text.
  std::vector<Glyph> glyphs_;
  double naturalWidth_ = 0;
  double lineSpacing_ = 0;
};

SimulatedShapedText::SimulatedShapedText(const ui::AttributedText& text, const ui::Font& font) {
  double x = 0;
  for (std::size_t run = 0; run < text.runs().size(); ++run) {
    const double pointSize = text.runs()[run].attributes.font.value_or(font).pointSize();
    for (std::size_t at = text.runs()[run].begin; at < text.endOf(run);) {
      const std::size_t begin = at;
      glyphs_.push_back({begin, nextCodePoint(text.text(), at), pointSize, x});
      if (!isLineEnd(glyphs_.back().codePoint)) x += kAdvance * pointSize;
    }
  }
  glyphs_.push_back(
      {text.text().size(), 0, glyphs_.empty() ? font.pointSize() : glyphs_.back().pointSize, x});
  lineSpacing_ = text.paragraphStyle().value_or(ui::ParagraphStyle{}).lineSpacing;
  for (std::size_t begin = 0; begin < glyphCount(); begin = paragraphEnd(begin) + 1) {
    naturalWidth_ = std::max(naturalWidth_, width(begin, paragraphEnd(begin)));
  }
}

std::size_t SimulatedShapedText::paragraphEnd(std::size_t begin) const {
  while (begin < glyphCount() && !isLineEnd(glyphs_[begin].codePoint)) ++begin;
  return begin;
}

// The end of the glyphs from `begin` that fit into the limit.
std::size_t SimulatedShapedText::fitting(std::size_t begin, std::size_t end, double limit) const {
  const double last = glyphs_[begin].x + limit + kTolerance;
  const auto past = std::upper_bound(glyphs_.begin() + static_cast<std::ptrdiff_t>(begin),
                                     glyphs_.begin() + static_cast<std::ptrdiff_t>(end) + 1, last,
                                     [](double x, const Glyph& glyph) { return x < glyph.x; });
  return static_cast<std::size_t>(past - glyphs_.begin()) - 1;
}

// Breaks at the last space that fits; without one, after the last character that fits, but after one at
// least.
Range SimulatedShapedText::lineFrom(std::size_t begin, double limit) const {
  // Searches only the glyphs that fit, so that a long paragraph is not searched again for each of its lines.
  const std::size_t reach = fitting(begin, glyphCount(), limit);
  const std::size_t hardEnd =
      static_cast<std::size_t>(std::find_if(glyphs_.begin() + static_cast<std::ptrdiff_t>(begin),
                                            glyphs_.begin() + static_cast<std::ptrdiff_t>(reach),
                                            [](const Glyph& glyph) { return isLineEnd(glyph.codePoint); }) -
                               glyphs_.begin());
  if (hardEnd < reach || reach == glyphCount()) return {begin, hardEnd, hardEnd + 1};
  if (isLineEnd(glyphs_[reach].codePoint)) return {begin, reach, reach + 1};
  std::size_t end = reach;
  while (end > begin && !isSpace(glyphs_[end].codePoint)) --end;
  if (end > begin) {
    std::size_t next = end;
    while (next < glyphCount() && isSpace(glyphs_[next].codePoint)) ++next;
    if (next < glyphCount() && isLineEnd(glyphs_[next].codePoint)) ++next;
    while (end > begin && isSpace(glyphs_[end - 1].codePoint)) --end;
    return {begin, end, next};
  }
  end = std::max(reach, begin + 1);
  while (end > begin + 1 && isCombining(glyphs_[end].codePoint)) --end;
  while (end < glyphCount() && isCombining(glyphs_[end].codePoint)) ++end;
  return {begin, end, end};
}

Range SimulatedShapedText::wholeParagraph(std::size_t begin) const {
  const std::size_t end = paragraphEnd(begin);
  return {begin, end, end + 1};
}

ui::TextLine SimulatedShapedText::lineOf(const Range& range) const {
  double pointSize = glyphs_[range.begin].pointSize;
  for (std::size_t i = range.begin; i < range.end; ++i) pointSize = std::max(pointSize, glyphs_[i].pointSize);
  ui::TextLine line;
  line.begin = glyphs_[range.begin].begin;
  line.end = glyphs_[range.end].begin;
  line.width = width(range.begin, range.end);
  line.ascent = kAscent * pointSize;
  line.descent = kDescent * pointSize;
  return line;
}

// Keeps as much of the paragraph as fits beside an ellipsis.
ui::TextLine SimulatedShapedText::truncatedLine(const Range& range,
                                                const ui::TextLayoutRequest& request) const {
  const std::size_t end = paragraphEnd(range.begin);
  const double ellipsis = kAdvance * glyphs_[range.begin].pointSize;
  std::size_t kept = fitting(range.begin, end, std::max(0.0, request.width - ellipsis));
  while (kept > range.begin && isSpace(glyphs_[kept - 1].codePoint)) --kept;
  ui::TextLine line = lineOf({range.begin, kept, kept});
  line.truncated = true;
  line.width += ellipsis;
  return line;
}

std::shared_ptr<const ui::TextLayout> SimulatedShapedText::layOut(
    const ui::TextLayoutRequest& request) const {
  auto layout = std::make_shared<ui::TextLayout>();
  if (glyphCount() == 0 || !(request.width > 0)) return layout;
  const double pointSize = glyphs_.front().pointSize;
  const std::size_t limit =
      ui::lineLimit({kAscent * pointSize, kDescent * pointSize, 0, 0}, lineSpacing_, request);
  const bool wraps = request.lineBreakMode == ui::LineBreakMode::wordWrapping;
  for (std::size_t begin = 0; begin < glyphCount() && layout->lines.size() < limit;) {
    const Range range = wraps ? lineFrom(begin, request.width) : wholeParagraph(begin);
    const bool last = layout->lines.size() + 1 == limit;
    const bool leavesText =
        range.next < glyphCount() || width(range.begin, range.end) > request.width + kTolerance;
    const bool truncates = last && leavesText && request.lineBreakMode != ui::LineBreakMode::clipping;
    layout->lines.push_back(truncates ? truncatedLine(range, request) : lineOf(range));
    begin = range.next;
  }
  layout->size = ui::placeLines(layout->lines, lineSpacing_, request);
  return layout;
}

}  // namespace

ui::FontMetrics SimulatedTextEngine::metrics(const ui::Font& font) {
  const double size = font.pointSize();
  return {kAscent * size, kDescent * size, 0, kCapHeight * size};
}

std::shared_ptr<const ui::ShapedText> SimulatedTextEngine::shape(const ui::AttributedText& text,
                                                                 const ui::Font& font) {
  return std::make_shared<SimulatedShapedText>(text, font);
}

}  // namespace linewatch::simulation

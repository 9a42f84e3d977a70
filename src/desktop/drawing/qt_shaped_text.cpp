#include "desktop/drawing/qt_shaped_text.h"

#include <QTextCharFormat>
#include <QTextOption>
#include <algorithm>

namespace linewatch::desktop {

namespace {

constexpr QChar kEllipsis(0x2026);
// Qt rounds lengths down to 64ths of a point.
constexpr double kQtStep = 1.0 / 64;

/// The end of the range without white space at its end.
int withoutSpaces(const QTextLayout& layout, int begin, int end) {
  while (end > begin && layout.text().at(end - 1).isSpace()) --end;
  return end;
}

/// The end of the line without the white space at a soft line break.
int visibleEnd(const QTextLayout& layout, const QTextLine& line) {
  const int end = line.textStart() + line.textLength();
  return end < layout.text().size() ? withoutSpaces(layout, line.textStart(), end) : end;
}

double widthForQt(double width) { return std::min(width, ui::kLongestLength) + kQtStep; }

}  // namespace

QtShapedText::QtShapedText(const ui::AttributedText& text, const Typeface& typeface)
    : text_(text.text()), typeface_(typeface) {
  for (const ui::AttributedText::Run& run : text.runs()) {
    std::optional<QFont> own;
    if (run.attributes.font) own = qtFont(*run.attributes.font);
    runs_.push_back({text_.unitAt(run.begin), std::move(own), run.attributes.color});
  }
  if (const auto style = text.paragraphStyle()) lineSpacing_ = style->lineSpacing;
  inOneLine_.resize(text_.paragraphs().size());
  wrapped_.resize(text_.paragraphs().size());
}

// The direction of a paragraph is that of its first letter, or of the interface if it has no letter.
bool QtShapedText::isRightToLeft(const Paragraph& paragraph, ui::LayoutDirection otherwise) const {
  const QStringView units = QStringView(text_.string()).mid(paragraph.begin, paragraph.end - paragraph.begin);
  if (units.isRightToLeft()) return true;
  if (otherwise == ui::LayoutDirection::leftToRight) return false;
  return std::none_of(units.begin(), units.end(), [](QChar unit) { return unit.direction() == QChar::DirL; });
}

QList<QTextLayout::FormatRange> QtShapedText::formatsOf(const Paragraph& part,
                                                        qsizetype lengthOfSuffix) const {
  QList<QTextLayout::FormatRange> formats;
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    const qsizetype runEnd = i + 1 < runs_.size() ? runs_[i + 1].begin : text_.string().size();
    const qsizetype begin = std::max(runs_[i].begin, part.begin);
    qsizetype end = std::min(runEnd, part.end);
    if (!runs_[i].font || begin >= end) continue;
    if (end == part.end) end += lengthOfSuffix;
    QTextCharFormat format;
    format.setFont(*runs_[i].font);
    formats.append({static_cast<int>(begin - part.begin), static_cast<int>(end - begin), format});
  }
  return formats;
}

QtShapedText::SharedLayout QtShapedText::laidOut(const Paragraph& part, const QString& suffix,
                                                 bool rightToLeft, double width,
                                                 std::size_t maximumNumberOfLines,
                                                 QTextOption::WrapMode wrapMode) const {
  const auto layout = std::make_shared<QTextLayout>(
      text_.string().mid(part.begin, part.end - part.begin) + suffix, typeface_.font);
  QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
  option.setTextDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
  option.setWrapMode(wrapMode);
  option.setUseDesignMetrics(true);
  layout->setTextOption(option);
  layout->setFormats(formatsOf(part, suffix.size()));
  layout->setCacheEnabled(true);
  layout->beginLayout();
  for (std::size_t i = 0; i < maximumNumberOfLines; ++i) {
    QTextLine line = layout->createLine();
    if (!line.isValid()) break;
    line.setLineWidth(widthForQt(width));
  }
  layout->endLayout();
  return layout;
}

QtShapedText::SharedLayout QtShapedText::inOneLine(std::size_t paragraph,
                                                   ui::LayoutDirection direction) const {
  const Paragraph& part = text_.paragraphs()[paragraph];
  const bool rightToLeft = isRightToLeft(part, direction);
  SharedLayout& known = inOneLine_[paragraph];
  if (known && (known->textOption().textDirection() == Qt::RightToLeft) == rightToLeft) return known;
  known = laidOut(part, {}, rightToLeft, ui::kLongestLength, 1, QTextOption::NoWrap);
  return known;
}

QtShapedText::SharedLayout QtShapedText::inLines(std::size_t paragraph, const ui::TextLayoutRequest& request,
                                                 std::size_t limit) const {
  if (request.lineBreakMode != ui::LineBreakMode::wordWrapping)
    return inOneLine(paragraph, request.direction);
  if (inOneLine_[paragraph]) {
    SharedLayout whole = inOneLine(paragraph, request.direction);
    if (whole->lineAt(0).naturalTextWidth() <= request.width) return whole;
  }
  const Paragraph& part = text_.paragraphs()[paragraph];
  const bool rightToLeft = isRightToLeft(part, request.direction);
  Wrapped& known = wrapped_[paragraph];
  if (!known.layout || known.width != request.width || known.rightToLeft != rightToLeft ||
      !known.holdsFor(limit)) {
    known = {laidOut(part, {}, rightToLeft, request.width, limit, QTextOption::WrapAtWordBoundaryOrAnywhere),
             request.width, rightToLeft, limit};
  }
  return known.layout;
}

double QtShapedText::naturalWidth() const {
  double width = 0;
  for (std::size_t i = 0; i < inOneLine_.size(); ++i) {
    width = std::max(width, inOneLine(i, ui::LayoutDirection::leftToRight)->lineAt(0).naturalTextWidth());
  }
  return width;
}

bool QtShapedText::isLeftOver(qsizetype from) const {
  const QStringView rest = QStringView(text_.string()).mid(from);
  return text_.isCutShort() ||
         std::any_of(rest.begin(), rest.end(), [](QChar unit) { return !unit.isSpace(); });
}

std::vector<QtShapedText::Line> QtShapedText::linesOf(const ui::TextLayoutRequest& request,
                                                      std::size_t limit) const {
  std::vector<Line> lines;
  for (std::size_t i = 0; i < text_.paragraphs().size() && lines.size() < limit; ++i) {
    const SharedLayout layout = inLines(i, request, limit - lines.size());
    const qsizetype origin = text_.paragraphs()[i].begin;
    for (int number = 0; number < layout->lineCount(); ++number) {
      const QTextLine line = layout->lineAt(number);
      lines.push_back(
          {layout, number, origin, origin + line.textStart(), origin + visibleEnd(*layout, line)});
    }
  }
  if (request.lineBreakMode == ui::LineBreakMode::clipping) return lines;
  Line& last = lines.back();
  const bool isTooWide = request.lineBreakMode == ui::LineBreakMode::truncatingTail &&
                         last.layout->lineAt(last.number).naturalTextWidth() > request.width + kQtStep;
  if (isTooWide || isLeftOver(last.end)) last = truncated(last, request.width);
  return lines;
}

// First measures how much text fits next to an ellipsis. Then shapes text and ellipsis together, because
// shaping may connect them.
QtShapedText::Line QtShapedText::truncated(const Line& line, double width) const {
  const bool rightToLeft = line.layout->textOption().textDirection() == Qt::RightToLeft;
  const auto withEllipsis = [&](qsizetype end) {
    return laidOut({line.begin, end}, kEllipsis, rightToLeft, ui::kLongestLength, 1, QTextOption::NoWrap);
  };
  const double ellipsis = withEllipsis(line.begin)->lineAt(0).naturalTextWidth();
  const Paragraph rest{line.begin, line.origin + line.layout->text().size()};
  const SharedLayout fitting = laidOut(rest, {}, rightToLeft, width - ellipsis, 1, QTextOption::WrapAnywhere);
  int length = fitting->lineAt(0).textLength();
  for (;;) {
    length = withoutSpaces(*fitting, 0, length);
    const SharedLayout layout = withEllipsis(line.begin + length);
    if (length == 0 || layout->lineAt(0).naturalTextWidth() <= width + kQtStep) {
      return {layout, 0, line.begin, line.begin, line.begin + length, true};
    }
    length = fitting->previousCursorPosition(length);
  }
}

std::size_t QtShapedText::lineLimitOf(const ui::TextLayoutRequest& request) const {
  return ui::lineLimit(typeface_.metrics, lineSpacing_, request);
}

std::shared_ptr<const ui::TextLayout> QtShapedText::layOut(const ui::TextLayoutRequest& request) const {
  if (text_.string().isEmpty() || !(request.width > 0)) return std::make_shared<ui::TextLayout>();
  return layOut(request, lineLimitOf(request));
}

std::shared_ptr<const ui::TextLayout> QtShapedText::layOut(const ui::TextLayoutRequest& request,
                                                           std::size_t limit) const {
  const std::vector<Line> lines = linesOf(request, limit);
  auto layout = std::make_shared<ui::TextLayout>();
  for (const Line& line : lines) layout->lines.push_back(measured(line));
  layout->size = ui::placeLines(layout->lines, lineSpacing_, request);
  // Lines in a fallback font may be higher than the estimate from which the limit was computed.
  if (lines.size() > 1 && layout->size.height > request.maximumHeight + kQtStep) {
    return layOut(request, lines.size() - 1);
  }
  std::vector<TextGlyphs::Line> glyphs;
  glyphs.reserve(lines.size());
  for (const Line& line : lines) glyphs.push_back(glyphsOf(line));
  layout->glyphs = std::make_shared<const TextGlyphs>(std::move(glyphs));
  return layout;
}

ui::TextLine QtShapedText::measured(const Line& line) const {
  const QTextLine shaped = line.layout->lineAt(line.number);
  ui::TextLine measures;
  measures.begin = text_.byteAt(line.begin);
  measures.end = text_.byteAt(line.end);
  measures.truncated = line.truncated;
  measures.width = shaped.naturalTextWidth();
  measures.ascent = shaped.ascent();
  measures.descent = shaped.descent();
  measures.leading = std::max(0.0, shaped.leading());
  return measures;
}

TextGlyphs::Line QtShapedText::glyphsOf(const Line& line) const {
  const auto unit = [&](qsizetype place) { return static_cast<int>(place - line.origin); };
  TextGlyphs::Line glyphs{line.layout, line.number, {}};
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    const qsizetype runEnd = i + 1 < runs_.size() ? runs_[i + 1].begin : text_.string().size();
    const qsizetype begin = std::max(runs_[i].begin, line.begin);
    const qsizetype end = std::min(runEnd, line.end);
    if (begin < end) glyphs.ranges.push_back({unit(begin), unit(end), runs_[i].color});
  }
  if (line.truncated && glyphs.ranges.empty()) glyphs.ranges.push_back({0, 0, std::nullopt});
  if (line.truncated) ++glyphs.ranges.back().end;
  return glyphs;
}

}  // namespace linewatch::desktop

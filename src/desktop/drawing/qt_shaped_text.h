#pragma once

#include <QFont>
#include <QTextLayout>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/drawing/text_glyphs.h"
#include "desktop/drawing/typefaces.h"
#include "desktop/drawing/unicode_text.h"
#include "ui/text_engine.h"

namespace linewatch::desktop {

/// A text with its fonts, which lays itself out with one QTextLayout a paragraph.
class QtShapedText final : public ui::ShapedText {
 public:
  QtShapedText(const ui::AttributedText& text, const Typeface& typeface);

  double naturalWidth() const override;
  std::shared_ptr<const ui::TextLayout> layOut(const ui::TextLayoutRequest& request) const override;

 private:
  using Paragraph = UnicodeText::Paragraph;
  using SharedLayout = std::shared_ptr<const QTextLayout>;

  /// Units from `begin` on with fonts or colours of their own, up to the next run's.
  struct Run {
    qsizetype begin = 0;
    std::optional<QFont> font;
    std::optional<ui::Color> color;
  };

  /// A line before it has a place.
  struct Line {
    SharedLayout layout;
    int number = 0;
    /// Where the layout's text begins in the whole text, and how much of it is the whole text's.
    qsizetype origin = 0;
    qsizetype begin = 0;
    qsizetype end = 0;
    bool truncated = false;
  };

  struct Wrapped {
    SharedLayout layout;
    double width = 0;
    bool rightToLeft = false;
    std::size_t limit = 0;

    /// Whether a layout in at most `wanted` lines would be the same.
    bool holdsFor(std::size_t wanted) const {
      const auto lines = static_cast<std::size_t>(layout->lineCount());
      return wanted == limit || (lines < limit && lines <= wanted);
    }
  };

  bool isRightToLeft(const Paragraph& paragraph, ui::LayoutDirection otherwise) const;
  /// Units of the text, with `suffix` behind them, in at most so many lines.
  SharedLayout laidOut(const Paragraph& part, const QString& suffix, bool rightToLeft, double width,
                       std::size_t maximumNumberOfLines, QTextOption::WrapMode wrapMode) const;
  QList<QTextLayout::FormatRange> formatsOf(const Paragraph& part, qsizetype lengthOfSuffix) const;
  SharedLayout inOneLine(std::size_t paragraph, ui::LayoutDirection direction) const;
  SharedLayout inLines(std::size_t paragraph, const ui::TextLayoutRequest& request, std::size_t limit) const;

  std::vector<Line> linesOf(const ui::TextLayoutRequest& request, std::size_t limit) const;
  bool isLeftOver(qsizetype from) const;
  Line truncated(const Line& line, double width) const;
  std::size_t lineLimitOf(const ui::TextLayoutRequest& request) const;
  std::shared_ptr<const ui::TextLayout> layOut(const ui::TextLayoutRequest& request, std::size_t limit) const;

  ui::TextLine measured(const Line& line) const;
  TextGlyphs::Line glyphsOf(const Line& line) const;

  UnicodeText text_;
  std::vector<Run> runs_;
  Typeface typeface_;
  double lineSpacing_ = 0;
  /// Each paragraph as it was last laid out in one line and in lines: a label asks more than once.
  mutable std::vector<SharedLayout> inOneLine_;
  mutable std::vector<Wrapped> wrapped_;
};

}  // namespace linewatch::desktop

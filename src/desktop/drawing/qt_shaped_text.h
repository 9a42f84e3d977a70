#pragma once

#include <QFont>
#include <QTextLayout>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/drawing/text_glyphs.h"
#include "desktop/drawing/unicode_text.h"
#include "platform/ui/text_engine.h"

namespace linewatch::desktop {

/// A text with its fonts, which lays itself out with one QTextLayout a paragraph.
class QtShapedText final : public ui::ShapedText {
 public:
  QtShapedText(const ui::AttributedText& text, const QFont& font);

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
  QFont font_;
  double lineSpacing_ = 0;
  /// Each paragraph in one line, as far as they were asked for: a text that fits is shaped only once.
  mutable std::vector<SharedLayout> inOneLine_;
};

}  // namespace linewatch::desktop

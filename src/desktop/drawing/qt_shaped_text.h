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

/// A text with its fonts. Each paragraph is laid out by one QTextLayout.
class QtShapedText final : public ui::ShapedText {
 public:
  QtShapedText(const ui::AttributedText& text, const Typeface& typeface);

  double naturalWidth() const override;
  std::shared_ptr<const ui::TextLayout> layOut(const ui::TextLayoutRequest& request) const override;

 private:
  using Paragraph = UnicodeText::Paragraph;
  using SharedLayout = std::shared_ptr<const QTextLayout>;

  /// A range of UTF-16 units with one font and colour. It ends where the next run begins.
  struct Run {
    qsizetype begin = 0;
    std::optional<QFont> font;
    std::optional<ui::Color> color;
  };

  /// A line that has not been positioned yet.
  struct Line {
    SharedLayout layout;
    int number = 0;
    /// The layout's text begins at unit `origin` of the whole text. The line has the units from `begin` to
    /// `end` of the whole text.
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

    /// Whether a limit of `wanted` lines gives this layout too.
    bool holdsFor(std::size_t wanted) const {
      const auto lines = static_cast<std::size_t>(layout->lineCount());
      return wanted == limit || (lines < limit && lines <= wanted);
    }
  };

  bool isRightToLeft(const Paragraph& paragraph, ui::LayoutDirection otherwise) const;
  /// Lays out a part of the text, followed by `suffix`, in at most `maximumNumberOfLines` lines.
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
  /// A cache of the last layouts of each paragraph, in one line and wrapped, because a label asks for the
  /// same layout several times.
  mutable std::vector<SharedLayout> inOneLine_;
  mutable std::vector<Wrapped> wrapped_;
};

}  // namespace linewatch::desktop

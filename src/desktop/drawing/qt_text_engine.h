#pragma once

#include <map>
#include <tuple>

#include "desktop/drawing/typefaces.h"
#include "ui/text_engine.h"

namespace linewatch::desktop {

/// The text engine, implemented with Qt's text layout. It handles every script for which a font is installed.
/// Text beyond UnicodeText::kLongest is cut off. Needs a QGuiApplication, but no display.
class QtTextEngine final : public ui::TextEngine {
 public:
  ui::FontMetrics metrics(const ui::Font& font) override;
  std::shared_ptr<const ui::ShapedText> shape(const ui::AttributedText& text, const ui::Font& font) override;

 private:
  using Key = std::tuple<ui::TextStyle, bool, bool, ui::TextSizeCategory>;

  const Typeface& typeface(const ui::Font& font);

  std::map<Key, Typeface> typefaces_;
};

/// A text in any font, not only in one of the text styles.
std::shared_ptr<const ui::ShapedText> shapedText(const ui::AttributedText& text, const Typeface& typeface);

}  // namespace linewatch::desktop

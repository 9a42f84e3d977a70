#include "desktop/drawing/qt_text_engine.h"

#include "desktop/drawing/qt_shaped_text.h"

namespace linewatch::desktop {

const Typeface& QtTextEngine::typeface(const ui::Font& font) {
  const Key key(font.style(), font.traits().bold, font.traits().italic, font.category());
  auto known = typefaces_.find(key);
  if (known == typefaces_.end()) known = typefaces_.emplace(key, qtFont(font)).first;
  return known->second;
}

ui::FontMetrics QtTextEngine::metrics(const ui::Font& font) { return typeface(font).metrics; }

std::shared_ptr<const ui::ShapedText> QtTextEngine::shape(const ui::AttributedText& text,
                                                          const ui::Font& font) {
  return shapedText(text, typeface(font));
}

std::shared_ptr<const ui::ShapedText> shapedText(const ui::AttributedText& text, const Typeface& typeface) {
  return std::make_shared<QtShapedText>(text, typeface);
}

}  // namespace linewatch::desktop

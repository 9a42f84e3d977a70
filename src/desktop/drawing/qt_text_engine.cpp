#include "desktop/drawing/qt_text_engine.h"

#include <QFont>

#include "desktop/drawing/qt_shaped_text.h"
#include "desktop/drawing/typefaces.h"

namespace linewatch::desktop {

ui::FontMetrics QtTextEngine::metrics(const ui::Font& font) { return metricsOf(qtFont(font)); }

std::shared_ptr<const ui::ShapedText> QtTextEngine::shape(const ui::AttributedText& text,
                                                          const ui::Font& font) {
  return shapedText(text, qtFont(font));
}

std::shared_ptr<const ui::ShapedText> shapedText(const ui::AttributedText& text, const QFont& font) {
  return std::make_shared<QtShapedText>(text, font);
}

}  // namespace linewatch::desktop

#include "presentation/label_extras.h"

#include <utility>

namespace linewatch {

double _rova_lineSpacing(const ui::Label& label) {
  return label.attributedText().paragraphStyle().value_or(ui::ParagraphStyle{}).lineSpacing;
}

void _rova_setLineSpacing(ui::Label& label, double lineSpacing) {
  if (label.attributedText().isEmpty() || _rova_lineSpacing(label) == lineSpacing) return;
  ui::AttributedText text = label.attributedText();
  ui::ParagraphStyle style = text.paragraphStyle().value_or(ui::ParagraphStyle{});
  style.lineSpacing = lineSpacing;
  text.setParagraphStyle(style);
  label.setAttributedText(std::move(text));
}

std::shared_ptr<ui::Label> multiLineLabelWithFont(const ui::Font& font) {
  auto label = std::make_shared<ui::Label>();
  label->setLaidOutByConstraints(true);
  label->setNumberOfLines(0);
  label->setLineBreakMode(ui::LineBreakMode::wordWrapping);
  label->setTextAlignment(ui::TextAlignment::natural);
  label->setFont(font);
  return label;
}

}  // namespace linewatch

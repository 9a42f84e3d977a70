#include "ui/attributed_text.h"

#include <utility>

namespace linewatch::ui {

AttributedText::AttributedText(std::string text, const TextAttributes& attributes) : text_(std::move(text)) {
  if (!text_.empty()) runs_.push_back({0, attributes});
}

std::size_t AttributedText::endOf(std::size_t run) const {
  return run + 1 < runs_.size() ? runs_[run + 1].begin : text_.size();
}

void AttributedText::append(std::string_view text, const TextAttributes& attributes) {
  if (text.empty()) return;
  if (runs_.empty() || runs_.back().attributes != attributes) runs_.push_back({text_.size(), attributes});
  text_ += text;
}

std::optional<ParagraphStyle> AttributedText::paragraphStyle() const {
  return runs_.empty() ? std::nullopt : runs_.front().attributes.paragraphStyle;
}

void AttributedText::setParagraphStyle(const ParagraphStyle& style) {
  for (Run& run : runs_) run.attributes.paragraphStyle = style;
}

}  // namespace linewatch::ui

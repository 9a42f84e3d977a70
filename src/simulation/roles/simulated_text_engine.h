#pragma once

#include <memory>

#include "ui/text_engine.h"

namespace linewatch::simulation {

/// Text with metrics that everyone can work out by hand: every code point is half the font's point size wide,
/// a line reaches 0.8 of it above the baseline and 0.2 below, capitals are 0.7 of it tall, and words wrap
/// greedily. A combining mark is as wide as any code point, but no line begins with one.
class SimulatedTextEngine final : public ui::TextEngine {
 public:
  ui::FontMetrics metrics(const ui::Font& font) override;
  std::shared_ptr<const ui::ShapedText> shape(const ui::AttributedText& text, const ui::Font& font) override;
};

}  // namespace linewatch::simulation

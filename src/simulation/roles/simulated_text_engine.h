#pragma once

#include <memory>

#include "ui/text_engine.h"

namespace linewatch::simulation {

/// Text whose metrics can be calculated by hand, in parts of the font's point size: a code point is 0.5 wide,
/// the ascent is 0.8, the descent 0.2 and the cap height 0.7. Words wrap greedily. A combining mark is as
/// wide as any other code point, but no line starts with one.
class SimulatedTextEngine final : public ui::TextEngine {
 public:
  ui::FontMetrics metrics(const ui::Font& font) override;
  std::shared_ptr<const ui::ShapedText> shape(const ui::AttributedText& text, const ui::Font& font) override;
};

}  // namespace linewatch::simulation

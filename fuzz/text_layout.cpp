// Lays out any text in any width. The lines follow each other, hold the text up to the limits, and split no
// character.

#include <QGuiApplication>
#include <cstddef>
#include <cstdint>
#include <string>

#include "choices.h"
#include "desktop/drawing/offscreen_application.h"
#include "desktop/drawing/qt_text_engine.h"
#include "feeds/text/utf8.h"
#include "require.h"
#include "simulation/roles/simulated_text_engine.h"

namespace {

using namespace linewatch;

ui::TextLayoutRequest requestIn(Choices& choices) {
  ui::TextLayoutRequest request;
  if (choices.number(0, 3) > 0) request.width = choices.number(-1, 250);
  request.maximumNumberOfLines = static_cast<std::size_t>(choices.number(0, 4));
  if (choices.number(0, 1) == 0) request.maximumHeight = choices.byte();
  request.lineBreakMode = static_cast<ui::LineBreakMode>(choices.number(0, 2));
  request.alignment = static_cast<ui::TextAlignment>(choices.number(0, 3));
  request.direction = static_cast<ui::LayoutDirection>(choices.number(0, 1));
  request.scale = choices.number(1, 3);
  return request;
}

void checkLayout(const ui::TextLayout& layout, const std::string& text,
                 const ui::TextLayoutRequest& request) {
  require(request.maximumNumberOfLines == 0 || layout.lines.size() <= request.maximumNumberOfLines);
  std::size_t end = 0;
  double baseline = -1;
  for (const ui::TextLine& line : layout.lines) {
    require(line.begin >= end && line.end >= line.begin && line.end <= text.size());
    require(line.width >= 0 && line.width <= layout.size.width + 0.01);
    require(line.baseline > baseline);
    end = line.end;
    baseline = line.baseline;
    // A line of valid text must not end inside a character.
    if (isValidUtf8(text)) require(isValidUtf8(text.substr(line.begin, line.end - line.begin)));
  }
  require(layout.size.height >= 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto application = desktop::makeOffscreenApplication();
  static desktop::QtTextEngine real;
  static simulation::SimulatedTextEngine simulated;
  Choices choices(data, size);
  ui::TextEngine& engine = choices.number(0, 1) == 0 ? static_cast<ui::TextEngine&>(simulated) : real;
  const auto request = requestIn(choices);
  const std::string text(choices.text(size));
  const auto shaped = engine.shape(ui::AttributedText(text), ui::Font(ui::TextStyle::body));
  require(shaped->naturalWidth() >= 0);
  const auto layout = shaped->layOut(request);
  require(!(request.width <= 0 || text.empty()) || layout->lines.empty());
  checkLayout(*layout, text, request);
  return 0;
}

#include "simulation/roles/recording_canvas.h"

#include <algorithm>
#include <limits>

#include "simulation/roles/simulated_interface.h"

namespace linewatch::simulation {

namespace {

ui::Rect rectAround(const ui::Path& path) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  ui::Point low{kInfinity, kInfinity};
  ui::Point high{-kInfinity, -kInfinity};
  for (const ui::Path::Element& element : path.elements) {
    if (element.verb == ui::Path::Verb::close) continue;
    low = {std::min(low.x, element.end.x), std::min(low.y, element.end.y)};
    high = {std::max(high.x, element.end.x), std::max(high.y, element.end.y)};
  }
  if (!(low.x <= high.x)) return {};
  return {low.x, low.y, high.x - low.x, high.y - low.y};
}

}  // namespace

std::size_t RecordingCanvas::count(Kind kind) const {
  return static_cast<std::size_t>(
      std::count_if(drawn_.begin(), drawn_.end(), [&](const Drawn& each) { return each.kind == kind; }));
}

void RecordingCanvas::clip(const ui::Rect& rect) {
  State& state = states_.back();
  state.clip = intersection(state.clip, rect.movedBy(state.origin));
}

// Null when nothing of it is inside the clip.
RecordingCanvas::Drawn* RecordingCanvas::add(Kind kind, const ui::Rect& rect, const ui::Color& color) {
  const State& state = states_.back();
  const ui::Rect placed = rect.movedBy(state.origin);
  if (intersection(placed, state.clip).isEmpty()) return nullptr;
  Drawn& made = drawn_.emplace_back();
  made.kind = kind;
  made.rect = placed;
  made.color = color.resolved(appearance_);
  made.alpha = state.alpha;
  made.clip = state.clip;
  return &made;
}

void RecordingCanvas::fillRect(const ui::Rect& rect, const ui::Color& color) { add(Kind::rect, rect, color); }

void RecordingCanvas::fillRoundedRect(const ui::Rect& rect, double /*radius*/, const ui::Color& color) {
  add(Kind::roundedRect, rect, color);
}

void RecordingCanvas::fillPath(const ui::Path& path, const ui::Color& color) {
  add(Kind::path, rectAround(path), color);
}

void RecordingCanvas::drawText(const ui::TextLayout& layout, const ui::Point& origin,
                               const ui::Color& color) {
  for (const ui::TextLine& line : layout.lines) {
    const ui::Rect rect{line.x, line.baseline - line.ascent, line.width, line.ascent + line.descent};
    Drawn* made = add(Kind::text, rect.movedBy(origin), color);
    if (made == nullptr) continue;
    made->begin = line.begin;
    made->end = line.end;
    made->truncated = line.truncated;
    made->baseline = states_.back().origin.y + origin.y + line.baseline;
  }
}

void RecordingCanvas::drawImage(const ui::Image& image, const ui::Rect& rect) {
  Drawn* made = add(Kind::image, rect, ui::SemanticColor::clear);
  const auto* simulated = dynamic_cast<const SimulatedImage*>(&image);
  if (made != nullptr && simulated != nullptr) made->name = simulated->name();
}

}  // namespace linewatch::simulation

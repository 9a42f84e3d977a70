#include "ui/canvas.h"

namespace linewatch::ui {

Path& Path::moveTo(Point point) {
  elements.push_back({Verb::move, point, {}, {}});
  return *this;
}

Path& Path::lineTo(Point point) {
  elements.push_back({Verb::line, point, {}, {}});
  return *this;
}

Path& Path::curveTo(Point control1, Point control2, Point end) {
  elements.push_back({Verb::curve, end, control1, control2});
  return *this;
}

Path& Path::close() {
  elements.push_back({Verb::close, {}, {}, {}});
  return *this;
}

}  // namespace linewatch::ui

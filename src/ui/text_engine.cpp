#include "ui/text_engine.h"

#include <algorithm>
#include <cmath>

namespace linewatch::ui {

namespace {

// The fraction of the spare width that is left of the line.
double shareBefore(const TextLayoutRequest& request) {
  switch (request.alignment) {
    case TextAlignment::left:
      return 0;
    case TextAlignment::center:
      return 0.5;
    case TextAlignment::right:
      return 1;
    case TextAlignment::natural:
      break;
  }
  return request.direction == LayoutDirection::rightToLeft ? 1 : 0;
}

double pitch(double ascent, double descent, double leading, double lineSpacing, double scale) {
  return ceiledToPixel(ascent + descent + leading + sanitizedLength(lineSpacing), scale);
}

}  // namespace

Size placeLines(std::vector<TextLine>& lines, double lineSpacing, const TextLayoutRequest& request) {
  const double share = shareBefore(request);
  Size size;
  double baseline = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    TextLine& line = lines[i];
    baseline +=
        i == 0 ? ceiledToPixel(line.ascent, request.scale)
               : pitch(line.ascent, lines[i - 1].descent, lines[i - 1].leading, lineSpacing, request.scale);
    line.baseline = baseline;
    line.x = std::isfinite(request.width) ? share * (request.width - line.width) : 0;
    size.width = std::max(size.width, line.width);
    size.height = std::max(0.0, baseline + ceiledToPixel(line.descent, request.scale));
  }
  return size;
}

std::size_t lineLimit(const FontMetrics& metrics, double lineSpacing, const TextLayoutRequest& request) {
  const std::size_t allowed = request.lineBreakMode != LineBreakMode::wordWrapping ? 1
                              : request.maximumNumberOfLines == 0 ? std::numeric_limits<std::size_t>::max()
                                                                  : request.maximumNumberOfLines;
  if (!std::isfinite(request.maximumHeight)) return allowed;
  const double first =
      ceiledToPixel(metrics.ascent, request.scale) + ceiledToPixel(metrics.descent, request.scale);
  const double step = pitch(metrics.ascent, metrics.descent, metrics.leading, lineSpacing, request.scale);
  if (!(step > 0)) return allowed;
  const double further = std::floor((request.maximumHeight - first) / step + 1e-6);
  return std::min(allowed, 1 + static_cast<std::size_t>(std::clamp(further, 0.0, kLongestLength)));
}

}  // namespace linewatch::ui

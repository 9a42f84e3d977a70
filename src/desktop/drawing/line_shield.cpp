#include "desktop/drawing/line_shield.h"

#include <algorithm>
#include <cmath>

#include "desktop/drawing/incident_badge.h"
#include "desktop/drawing/qt_text_engine.h"
#include "desktop/drawing/typefaces.h"
#include "feeds/gtfs/colors.h"

namespace linewatch::desktop {

namespace {

constexpr std::int64_t kSmallestStep = -6;
constexpr std::int64_t kLargestStep = 40;
/// A shield's height, as a multiple of its text size.
constexpr double kHeight = 1.6;
/// The longest text of a shield, as a multiple of its text size. A longer text ends in an ellipsis.
constexpr double kLongestText = 8.5;
constexpr std::string_view kFillOfLinesWithoutColor = "5B6470";
// A shield with less contrast than this to the background gets an outline.
constexpr double kLeastContrastWithBackground = 3;
constexpr double kOutlineWidth = 1;
// An outline of this opacity has that contrast.
constexpr double kOutlineAlpha = 0.5;

double textSize(const ArtworkSize& size) {
  const std::int64_t step = std::clamp(size.step, kSmallestStep, kLargestStep);
  return (LineShield::kTextSizeAtStep3 + static_cast<double>(step - 3)) * size.growth;
}

ui::RGBA rgba(std::string_view hexadecimal) {
  const auto number = static_cast<unsigned>(std::stoul(std::string(hexadecimal), nullptr, 16));
  const auto channel = [&](unsigned shift) { return ((number >> shift) & 0xFF) / 255.0; };
  return {channel(16), channel(8), channel(0), 1};
}

std::string hexadecimal(const ui::RGBA& color) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const double channel : {color.red, color.green, color.blue}) {
    const auto byte = static_cast<unsigned>(std::lround(std::clamp(channel, 0.0, 1.0) * 255));
    text.append({kDigits[byte / 16], kDigits[byte % 16]});
  }
  return text;
}

QFont shieldFont(const ArtworkSize& size) { return qtFont(textSize(size), QFont::Bold); }

double shieldCapHeight(const ArtworkSize& size) { return metricsOf(shieldFont(size)).capHeight; }

/// The text without white space around it.
std::string trimmed(const std::string& text) {
  constexpr std::string_view kSpaces = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kSpaces);
  if (begin == std::string::npos) return {};
  return text.substr(begin, text.find_last_not_of(kSpaces) - begin + 1);
}

}  // namespace

// With this height, capital letters and digits have as many pixels above them as below.
double artworkHeight(const ArtworkSize& size) {
  const double capHeight = ui::snappedToPixel(shieldCapHeight(size), size.scale);
  return capHeight + 2 * ui::snappedToPixel((kHeight * textSize(size) - capHeight) / 2, size.scale);
}

LineShield::LineShield(const ShieldDataSource& shield, const std::string& text,
                       std::optional<double> widthAtStep3, const ArtworkSize& size)
    : form_(formOf(static_cast<TransitMode>(shield.shieldType))),
      fill_(normalizedColor(shield.shieldColorString.value_or(""))) {
  if (fill_.empty()) fill_ = kFillOfLinesWithoutColor;
  textColor_ = readableTextColor(normalizedColor(shield.textColorString.value_or("")), fill_);

  const double points = textSize(size);
  const double padding = form_.padding * points;
  const double height = artworkHeight(size);
  std::optional<double> width;
  if (widthAtStep3 && *widthAtStep3 > 0)
    width = std::min(*widthAtStep3, ui::kLongestLength) * points / kTextSizeAtStep3;
  text_ = shapedText(ui::AttributedText(text), Typeface(shieldFont(size)))
              ->layOut({.width = width ? std::max(points, *width - 2 * padding) : kLongestText * points,
                        .lineBreakMode = ui::LineBreakMode::truncatingTail,
                        .alignment = ui::TextAlignment::left,
                        .scale = size.scale});
  capHeight_ = ui::snappedToPixel(shieldCapHeight(size), size.scale);
  if (!width) width = std::max(height, text_->size.width + 2 * padding);
  size_ = {ui::ceiledToPixel(*width, size.scale), height};
}

void LineShield::draw(ui::Canvas& canvas, const ui::Rect& rect) const {
  const auto inMiddle = [&](double length, double space) {
    return ui::snappedToPixel((space - length) / 2, canvas.scale());
  };
  const ui::Rect place{rect.x + inMiddle(size_.width, rect.width),
                       rect.y + inMiddle(size_.height, rect.height), size_.width, size_.height};
  drawShape(canvas, place);
  const double baseline = ui::snappedToPixel((size_.height + capHeight_) / 2, canvas.scale());
  canvas.drawText(
      *text_, {place.x + (size_.width - text_->size.width) / 2, place.y + baseline - text_->firstBaseline()},
      rgba(textColor_));
}

void LineShield::drawShape(ui::Canvas& canvas, const ui::Rect& rect) const {
  const auto resolved = [&](ui::SemanticColor color) {
    return ui::Color(color).resolved(canvas.appearance());
  };
  const bool isOutlined = contrastRatio(fill_, hexadecimal(resolved(ui::SemanticColor::background))) <
                          kLeastContrastWithBackground;
  if (isOutlined) {
    ui::RGBA edge = resolved(ui::SemanticColor::label);
    edge.alpha *= kOutlineAlpha;
    canvas.fillPath(shieldOutline(form_, rect, 0), edge);
  }
  canvas.fillPath(shieldOutline(form_, rect, isOutlined ? kOutlineWidth : 0), rgba(fill_));
}

std::shared_ptr<const ui::Image> LineShieldManager::image(const ShieldDataSource& shield,
                                                          std::optional<double> widthAtStep3,
                                                          const ArtworkSize& size) {
  const std::string text = trimmed(shield.shieldText.value_or(""));
  return text.empty() ? nullptr : std::make_shared<LineShield>(shield, text, widthAtStep3, size);
}

std::shared_ptr<const ui::Image> LineShieldManager::withIncidentBadge(std::shared_ptr<const ui::Image> image,
                                                                      const ArtworkSize& size) {
  return std::make_shared<IncidentBadge>(std::move(image), isMirrored_, size.scale);
}

}  // namespace linewatch::desktop
